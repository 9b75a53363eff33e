// Draws a picture with zoom and pan, reports the pixel under the cursor and
// lets the user draw, move and remove regions of interest on it.
//
// Mouse: wheel zooms around the cursor, double-click fits the picture to the
// view, dragging pans (middle button always, left button unless the ROI tool
// is on). With the ROI tool, left-dragging on free ground draws a region and
// inside a region moves it; a right click removes the region under the cursor.
#pragma once

#include <QImage>
#include <QMap>
#include <QPointF>
#include <QRect>
#include <QWidget>

class ImageCanvas : public QWidget {
    Q_OBJECT
public:
    explicit ImageCanvas(QWidget* parent = nullptr);

    // sensorValues (Grayscale16 or null) answers the cursor readout where the picture cannot.
    void SetPicture(const QImage& picture, const QImage& sensorValues);
    void Clear(const QString& hint);
    const QImage& Picture() const { return m_picture; }
    const QImage& SensorValues() const { return m_sensorValues; }
    void SetOverlayText(const QString& text);
    void SetRegions(const QMap<int, QRect>& regions);
    void SetRoiTool(bool on) { m_roiTool = on; }
    // Height of a picture pixel relative to its width on screen (1 for cameras,
    // more for range images whose lines are far fewer than their points).
    void SetPixelAspect(double aspect);
    void FitToView();
    double Zoom() const { return m_scale; }

signals:
    void cursorInfo(const QString& text);
    void regionDrawn(const QRect& region);
    void regionMoved(int index, const QRect& region);
    void regionRemoveRequested(int index);
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    enum class Drag { None, Pan, Draw, Move };

    QPointF ToImage(const QPointF& widgetPoint) const;
    QRectF ToWidget(const QRect& imageRect) const;
    QSizeF ShownSize() const;
    int RegionAt(const QPointF& imagePoint) const;
    QString PixelText(int x, int y) const;
    void PaintRegions(QPainter& painter) const;

    QImage m_picture;
    QImage m_sensorValues;
    QString m_hint;
    QString m_overlay;
    QMap<int, QRect> m_regions;
    bool m_roiTool = false;
    bool m_fit = true;
    double m_scale = 1.0;  // screen pixels per picture pixel across
    double m_aspect = 1.0; // and down, relative to across
    QPointF m_offset;      // widget position of the picture's top-left corner
    Drag m_drag = Drag::None;
    QPointF m_dragStart;   // widget coordinates
    QPointF m_dragCurrent; // widget coordinates
    QPointF m_offsetAtDragStart;
    int m_movingRegion = 0;
};
