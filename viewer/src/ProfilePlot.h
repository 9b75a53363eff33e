// A profile camera's newest profile as height over x, with a grid and axis
// labels in sensor units. The height axis follows the data.
#pragma once

#include <QVector>
#include <QWidget>

class ProfilePlot : public QWidget {
    Q_OBJECT
public:
    explicit ProfilePlot(QWidget* parent = nullptr);

    void SetProfile(const QVector<float>& heights);
    const QVector<float>& Profile() const { return m_heights; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintGrid(QPainter& painter, const QRectF& area) const;

    QVector<float> m_heights;
    float m_low = 0;
    float m_high = 1;
};
