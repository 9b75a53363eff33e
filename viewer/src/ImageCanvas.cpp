#include "ImageCanvas.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

const QColor Background(18, 20, 23);
const QColor RegionColour(255, 196, 0);

QRect Normalised(const QPointF& a, const QPointF& b)
{
    return QRectF(a, b).normalized().toAlignedRect();
}

} // namespace

ImageCanvas::ImageCanvas(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setMinimumSize(160, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void ImageCanvas::SetPicture(const QImage& picture, const QImage& sensorValues)
{
    const bool sizeChanged = picture.size() != m_picture.size();
    m_picture = picture;
    m_sensorValues = sensorValues;
    if (sizeChanged && m_fit) {
        FitToView();
    }
    update();
}

void ImageCanvas::Clear(const QString& hint)
{
    m_picture = QImage();
    m_sensorValues = QImage();
    m_hint = hint;
    m_overlay.clear();
    update();
}

void ImageCanvas::SetOverlayText(const QString& text)
{
    m_overlay = text;
}

void ImageCanvas::SetRegions(const QMap<int, QRect>& regions)
{
    m_regions = regions;
    update();
}

void ImageCanvas::SetPixelAspect(double aspect)
{
    if (aspect > 0 && aspect != m_aspect) {
        m_aspect = aspect;
        FitToView();
    }
}

void ImageCanvas::FitToView()
{
    m_fit = true;
    if (m_picture.isNull()) {
        return;
    }
    m_scale = std::min(double(width()) / m_picture.width(), double(height()) / (m_picture.height() * m_aspect));
    const QSizeF shown = ShownSize();
    m_offset = QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2);
    update();
}

QSizeF ImageCanvas::ShownSize() const
{
    return QSizeF(m_picture.width() * m_scale, m_picture.height() * m_scale * m_aspect);
}

QPointF ImageCanvas::ToImage(const QPointF& widgetPoint) const
{
    const QPointF shifted = widgetPoint - m_offset;
    return QPointF(shifted.x() / m_scale, shifted.y() / (m_scale * m_aspect));
}

QRectF ImageCanvas::ToWidget(const QRect& imageRect) const
{
    const double down = m_scale * m_aspect;
    return QRectF(m_offset + QPointF(imageRect.x() * m_scale, imageRect.y() * down),
                  QSizeF(imageRect.width() * m_scale, imageRect.height() * down));
}

int ImageCanvas::RegionAt(const QPointF& imagePoint) const
{
    for (auto it = m_regions.constBegin(); it != m_regions.constEnd(); ++it) {
        if (QRectF(it.value()).contains(imagePoint)) {
            return it.key();
        }
    }
    return 0;
}

QString ImageCanvas::PixelText(int x, int y) const
{
    if (!m_sensorValues.isNull()) {
        const auto* line = reinterpret_cast<const quint16*>(m_sensorValues.constScanLine(y));
        return QString::number(line[x]);
    }
    const QColor colour = m_picture.pixelColor(x, y);
    if (m_picture.format() == QImage::Format_Grayscale8) {
        return QString::number(colour.red());
    }
    return QString("R %1  G %2  B %3").arg(colour.red()).arg(colour.green()).arg(colour.blue());
}

void ImageCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Background);
    if (m_picture.isNull()) {
        painter.setPen(QColor(120, 128, 138));
        painter.drawText(rect(), Qt::AlignCenter, m_hint);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_scale < 1.0 || m_aspect != 1.0);
    painter.drawImage(QRectF(m_offset, ShownSize()), m_picture);
    PaintRegions(painter);
    if (!m_overlay.isEmpty()) {
        painter.setPen(QColor(0, 230, 160));
        painter.drawText(rect().adjusted(8, 6, -8, -6), Qt::AlignLeft | Qt::AlignTop, m_overlay);
    }
}

void ImageCanvas::PaintRegions(QPainter& painter) const
{
    painter.setBrush(QColor(255, 196, 0, 40));
    painter.setPen(QPen(RegionColour, 1.5));
    for (auto it = m_regions.constBegin(); it != m_regions.constEnd(); ++it) {
        QRectF shown = ToWidget(it.value());
        if (m_drag == Drag::Move && it.key() == m_movingRegion) {
            shown.translate(m_dragCurrent - m_dragStart);
        }
        painter.drawRect(shown);
        painter.drawText(shown.topLeft() + QPointF(4, 14), QString("ROI %1").arg(it.key()));
    }
    if (m_drag == Drag::Draw) {
        painter.setPen(QPen(RegionColour, 1.5, Qt::DashLine));
        painter.drawRect(QRectF(m_dragStart, m_dragCurrent).normalized());
    }
}

void ImageCanvas::resizeEvent(QResizeEvent*)
{
    if (m_fit) {
        FitToView();
    }
}

void ImageCanvas::wheelEvent(QWheelEvent* event)
{
    if (m_picture.isNull()) {
        return;
    }
    const double factor = std::pow(1.0015, event->angleDelta().y());
    const double scale = std::clamp(m_scale * factor, 0.02, 64.0);
    const QPointF anchor = event->position();
    const QPointF imagePoint = ToImage(anchor);
    m_scale = scale;
    m_offset = anchor - QPointF(imagePoint.x() * m_scale, imagePoint.y() * m_scale * m_aspect);
    m_fit = false;
    update();
}

void ImageCanvas::mousePressEvent(QMouseEvent* event)
{
    emit clicked();
    m_dragStart = m_dragCurrent = event->position();
    const QPointF imagePoint = ToImage(event->position());
    if (m_roiTool && !m_picture.isNull() && event->button() == Qt::RightButton) {
        if (const int index = RegionAt(imagePoint)) {
            emit regionRemoveRequested(index);
        }
    } else if (m_roiTool && !m_picture.isNull() && event->button() == Qt::LeftButton) {
        m_movingRegion = RegionAt(imagePoint);
        m_drag = m_movingRegion != 0 ? Drag::Move : Drag::Draw;
    } else if (event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton) {
        m_drag = Drag::Pan;
        m_offsetAtDragStart = m_offset;
    }
}

void ImageCanvas::mouseMoveEvent(QMouseEvent* event)
{
    m_dragCurrent = event->position();
    if (m_drag == Drag::Pan) {
        m_offset = m_offsetAtDragStart + (m_dragCurrent - m_dragStart);
        m_fit = false;
    }
    if (m_drag != Drag::None) {
        update();
    }
    if (m_picture.isNull()) {
        return;
    }
    const QPointF imagePoint = ToImage(event->position());
    const int x = int(std::floor(imagePoint.x()));
    const int y = int(std::floor(imagePoint.y()));
    if (m_picture.rect().contains(x, y)) {
        emit cursorInfo(
            QString("x %1  y %2  value %3  zoom %4%").arg(x).arg(y).arg(PixelText(x, y)).arg(qRound(m_scale * 100)));
    } else {
        emit cursorInfo(QString("zoom %1%").arg(qRound(m_scale * 100)));
    }
}

void ImageCanvas::mouseReleaseEvent(QMouseEvent* event)
{
    const Drag drag = std::exchange(m_drag, Drag::None);
    const QPointF start = ToImage(m_dragStart);
    const QPointF end = ToImage(event->position());
    if (drag == Drag::Draw) {
        const QRect region = Normalised(start, end).intersected(m_picture.rect());
        if (region.width() > 1 && region.height() > 1) {
            emit regionDrawn(region);
        }
    } else if (drag == Drag::Move) {
        const QPoint shift = (end - start).toPoint();
        emit regionMoved(m_movingRegion, m_regions.value(m_movingRegion).translated(shift));
    }
    update();
}

void ImageCanvas::mouseDoubleClickEvent(QMouseEvent*)
{
    FitToView();
}
