#include "ViewGrid.h"

#include <QGridLayout>

#include <ViewerBiz3/ViewerBiz3.h>

#include "CameraView.h"
#include "LibrarySession.h"

namespace {

int ColumnsFor(int views)
{
    return views >= 9 ? 3 : views >= 2 ? 2 : 1;
}

} // namespace

int ViewGrid::LayoutFor(int views)
{
    return views <= 1 ? 1 : views <= 2 ? 2 : views <= 4 ? 4 : 9;
}

ViewGrid::ViewGrid(LibrarySession& session, QWidget* parent) : QWidget(parent), m_session(session)
{
    m_grid = new QGridLayout(this);
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(4);
    for (int i = 0; i < MaximumViews; ++i) {
        auto* view = new CameraView(session, i, this);
        view->hide();
        connect(view, &CameraView::focusRequested, this, &ViewGrid::Select);
        connect(view, &CameraView::message, this, &ViewGrid::message);
        LibraryEvents& events = session.Events();
        connect(&events, &LibraryEvents::statisticsChanged, view, &CameraView::OnStatistics, Qt::QueuedConnection);
        connect(&events, &LibraryEvents::imageModeChanged, view, &CameraView::OnImageMode, Qt::QueuedConnection);
        connect(&events, &LibraryEvents::showModeChanged, view, &CameraView::OnShowMode, Qt::QueuedConnection);
        connect(&events, &LibraryEvents::cameraRenamed, view, &CameraView::OnRenamed, Qt::QueuedConnection);
        connect(&events, &LibraryEvents::deviceChanged, view, &CameraView::RefreshState, Qt::QueuedConnection);
        m_views << view;
    }
    connect(&session.Events(), &LibraryEvents::layoutChanged, this, &ViewGrid::ApplyLayout, Qt::QueuedConnection);
    connect(&session.Events(), &LibraryEvents::focusChanged, this, &ViewGrid::OnFocusChanged, Qt::QueuedConnection);
    ApplyLayout(ViewerBiz3::GetImgLayout());
    Highlight(0);
}

CameraView* ViewGrid::ViewOf(const QString& camera) const
{
    for (int i = 0; i < m_count; ++i) {
        if (m_views[i]->Camera() == camera) {
            return m_views[i];
        }
    }
    return nullptr;
}

void ViewGrid::SetKnownCameras(const QStringList& cameras)
{
    for (CameraView* view : m_views) {
        view->SetKnownCameras(cameras);
    }
}

void ViewGrid::ApplyLayout(int views)
{
    const int count = LayoutFor(views);
    if (count == m_count) {
        return;
    }
    m_count = count;
    const int columns = ColumnsFor(count);
    for (int i = 0; i < MaximumViews; ++i) {
        m_grid->removeWidget(m_views[i]);
        m_views[i]->setVisible(i < count);
        if (i < count) {
            m_grid->addWidget(m_views[i], i / columns, i % columns);
        }
    }
    for (int r = 0; r < 3; ++r) {
        m_grid->setRowStretch(r, r < (count + columns - 1) / columns ? 1 : 0);
        m_grid->setColumnStretch(r, r < columns ? 1 : 0);
    }
    if (m_focused >= count) {
        Select(m_views[0]);
    }
}

void ViewGrid::Select(CameraView* view)
{
    const int index = static_cast<int>(m_views.indexOf(view));
    if (index < 0) {
        return;
    }
    Highlight(index);
    if (!view->Camera().isEmpty()) {
        ViewerBiz3::SetFocus(ViewerBiz3::FOCUS_CAMERA, view->Camera().toStdString());
    }
}

void ViewGrid::OnFocusChanged(int type, const QString& deviceId)
{
    if (type != ViewerBiz3::FOCUS_CAMERA || FocusedView()->Camera() == deviceId) {
        return;
    }
    if (CameraView* view = ViewOf(deviceId)) {
        Highlight(static_cast<int>(m_views.indexOf(view)));
    }
}

void ViewGrid::Highlight(int index)
{
    m_focused = index;
    for (int i = 0; i < MaximumViews; ++i) {
        m_views[i]->SetFocused(i == index);
    }
    emit focusedViewChanged(m_views[index]);
}
