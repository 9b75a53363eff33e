#include "ProfilePlot.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

const QColor Background(18, 20, 23);
const QColor GridColour(52, 58, 66);
const QColor LabelColour(140, 148, 158);
const QColor CurveColour(0, 200, 255);
constexpr int GridLines = 5;

} // namespace

ProfilePlot::ProfilePlot(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(160, 120);
}

void ProfilePlot::SetProfile(const QVector<float>& heights)
{
    m_heights = heights;
    if (!heights.isEmpty()) {
        const auto [low, high] = std::minmax_element(heights.begin(), heights.end());
        const float margin = std::max(1.0f, (*high - *low) * 0.08f);
        m_low = *low - margin;
        m_high = *high + margin;
    }
    update();
}

void ProfilePlot::PaintGrid(QPainter& painter, const QRectF& area) const
{
    painter.setPen(GridColour);
    for (int i = 0; i <= GridLines; ++i) {
        const double y = area.top() + area.height() * i / GridLines;
        const double x = area.left() + area.width() * i / GridLines;
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
    painter.setPen(LabelColour);
    for (int i = 0; i <= GridLines; ++i) {
        const double y = area.top() + area.height() * i / GridLines;
        const float height = m_high - (m_high - m_low) * i / GridLines;
        painter.drawText(QRectF(0, y - 8, area.left() - 6, 16), Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(qRound(height)));
        const double x = area.left() + area.width() * i / GridLines;
        const int column = qRound(double(std::max<qsizetype>(1, m_heights.size()) - 1) * i / GridLines);
        painter.drawText(QRectF(x - 30, area.bottom() + 4, 60, 16), Qt::AlignHCenter | Qt::AlignTop,
                         QString::number(column));
    }
    painter.drawText(QRectF(area.left(), area.bottom() + 20, area.width(), 16), Qt::AlignHCenter, "x (points)");
}

void ProfilePlot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Background);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = QRectF(rect()).adjusted(56, 12, -14, -40);
    if (area.width() < 10 || area.height() < 10) {
        return;
    }
    PaintGrid(painter, area);
    if (m_heights.size() < 2) {
        painter.setPen(LabelColour);
        painter.drawText(area, Qt::AlignCenter, "Waiting for profiles");
        return;
    }
    const double xStep = area.width() / (m_heights.size() - 1);
    const double yScale = area.height() / double(m_high - m_low);
    QPainterPath curve;
    for (qsizetype i = 0; i < m_heights.size(); ++i) {
        const QPointF point(area.left() + i * xStep, area.bottom() - (m_heights[i] - m_low) * yScale);
        i == 0 ? curve.moveTo(point) : curve.lineTo(point);
    }
    QPainterPath filled = curve;
    filled.lineTo(area.bottomRight());
    filled.lineTo(area.bottomLeft());
    filled.closeSubpath();
    QLinearGradient shade(area.topLeft(), area.bottomLeft());
    shade.setColorAt(0, QColor(0, 200, 255, 90));
    shade.setColorAt(1, QColor(0, 200, 255, 10));
    painter.fillPath(filled, shade);
    painter.setPen(QPen(CurveColour, 1.6));
    painter.drawPath(curve);
}
