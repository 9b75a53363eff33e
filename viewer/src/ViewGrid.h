// The views in a layout of 1, 2, 4 or 9, and which of them has the focus.
// The layout is the library's (SetImgLayout; ILayoutUpdate tells the grid),
// and so is the focus: selecting a view calls SetFocus with its camera, and
// IFocusUpdate moves the highlight to a view that shows the focused camera.
#pragma once

#include <QStringList>
#include <QVector>
#include <QWidget>

class CameraView;
class LibrarySession;
class QGridLayout;

class ViewGrid : public QWidget {
    Q_OBJECT
public:
    static constexpr int MaximumViews = 9;

    ViewGrid(LibrarySession& session, QWidget* parent = nullptr);

    // The smallest layout (1, 2, 4 or 9 views) with room for the views asked for.
    static int LayoutFor(int views);

    int ViewCount() const { return m_count; }
    CameraView* View(int index) const { return m_views.value(index); }
    CameraView* FocusedView() const { return m_views.value(m_focused); }
    // The first shown view bound to camera, else null.
    CameraView* ViewOf(const QString& camera) const;
    void SetKnownCameras(const QStringList& cameras);

public slots:
    void ApplyLayout(int views);
    void OnFocusChanged(int type, const QString& deviceId);
    void Select(CameraView* view);

signals:
    void focusedViewChanged(CameraView* view);
    void message(const QString& text);

private:
    void Highlight(int index);

    LibrarySession& m_session;
    QGridLayout* m_grid;
    QVector<CameraView*> m_views;
    int m_count = 0;
    int m_focused = 0;
};
