#include "MainWindow.h"

#include <QActionGroup>
#include <QComboBox>
#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QStatusBar>
#include <QToolBar>

#include <ViewerBiz3/ViewerBiz3.h>

#include "CameraView.h"
#include "DeviceTree.h"
#include "FeatureTree.h"
#include "LibrarySession.h"
#include "LogPanel.h"
#include "ViewGrid.h"

namespace {

struct Language {
    const char* code;
    const char* name;
};
// The library keeps the language by its English name.
const Language Languages[] = {
    {"English", "English"}, {"Chinese", "中文"}, {"German", "Deutsch"}, {"Japanese", "日本語"}};

} // namespace

MainWindow::MainWindow(LibrarySession& session, const ViewerOptions& options, QWidget* parent)
    : QMainWindow(parent), m_session(session), m_options(options)
{
    setWindowTitle("ViewerBiz3 Viewer");
    resize(1680, 980);
    m_grid = new ViewGrid(session);
    setCentralWidget(m_grid);
    m_devices = new DeviceTree(session);
    m_features = new FeatureTree;
    m_log = new LogPanel;
    CreateToolBar();
    CreateDocks();
    Connect();
    statusBar()->addPermanentWidget(m_languageLabel = new QLabel);
    m_languageLabel->setText("Language: " + QString::fromStdString(ViewerBiz3::GetLang()));
    m_devices->Refresh();
}

void MainWindow::CreateToolBar()
{
    QToolBar* bar = addToolBar("Main");
    bar->setObjectName("mainToolBar");
    bar->setMovable(false);
    bar->addAction(style()->standardIcon(QStyle::SP_BrowserReload), "Refresh devices", m_devices, &DeviceTree::Refresh);
    bar->addSeparator();
    bar->addWidget(new QLabel(" Layout "));
    m_layouts = new QActionGroup(this);
    for (int views : {1, 2, 4, 9}) {
        QAction* action = bar->addAction(QString("%1 view%2").arg(views).arg(views > 1 ? "s" : ""));
        action->setObjectName(QString("layout%1").arg(views));
        action->setCheckable(true);
        action->setData(views);
        m_layouts->addAction(action);
        connect(action, &QAction::triggered, this,
                [views] { ViewerBiz3::SetImgLayout(static_cast<ViewerBiz3::LAYOUT_TYPE>(views)); });
    }
    bar->addSeparator();
    bar->addAction(style()->standardIcon(QStyle::SP_DialogSaveButton), "Save shown frame", this,
                   &MainWindow::SaveFocusedFrame);
    QWidget* spacer = new QWidget;
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(spacer);
    bar->addWidget(new QLabel("Language "));
    m_language = new QComboBox;
    m_language->setObjectName("language");
    for (const Language& language : Languages) {
        m_language->addItem(language.name, language.code);
    }
    const int current = m_language->findData(QString::fromStdString(ViewerBiz3::GetLang()));
    m_language->setCurrentIndex(std::max(0, current));
    bar->addWidget(m_language);
    connect(m_language, &QComboBox::activated, this,
            [this](int index) { ViewerBiz3::SetLang(m_language->itemData(index).toString().toStdString()); });
}

void MainWindow::CreateDocks()
{
    const auto dock = [this](const QString& title, QWidget* content, Qt::DockWidgetArea area) {
        auto* widget = new QDockWidget(title, this);
        widget->setObjectName(title);
        widget->setWidget(content);
        widget->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
        addDockWidget(area, widget);
        return widget;
    };
    dock("Devices", m_devices, Qt::LeftDockWidgetArea);
    dock("Features", m_features, Qt::RightDockWidgetArea);
    QDockWidget* log = dock("Log", m_log, Qt::BottomDockWidgetArea);
    m_devices->setMinimumWidth(440);
    m_features->setMinimumWidth(380);
    resizeDocks({log}, {170}, Qt::Vertical);
}

void MainWindow::Connect()
{
    LibraryEvents& events = m_session.Events();
    connect(&events, &LibraryEvents::logLine, m_log, &LogPanel::Add, Qt::QueuedConnection);
    connect(
        &events, &LibraryEvents::languageChanged, this,
        [this](const QString& language) {
            m_languageLabel->setText("Language: " + language);
            m_language->setCurrentIndex(std::max(0, m_language->findData(language)));
        },
        Qt::QueuedConnection);
    // The grid applied the layout first (it connected first) and rounded it to one it has.
    connect(
        &events, &LibraryEvents::layoutChanged, this,
        [this] {
            for (QAction* action : m_layouts->actions()) {
                action->setChecked(action->data().toInt() == m_grid->ViewCount());
            }
        },
        Qt::QueuedConnection);
    connect(
        &events, &LibraryEvents::cameraRenamed, this,
        [this](const QString& oldId, const QString& newId) {
            if (m_features->Camera() == oldId) {
                m_features->ShowCamera(newId);
            }
        },
        Qt::QueuedConnection);
    connect(
        &events, &LibraryEvents::deviceChanged, this,
        [this](const QString&, const QString& camera) { OnCameraState(camera); }, Qt::QueuedConnection);
    connect(m_devices, &DeviceTree::cameraActivated, this, &MainWindow::ShowInFocusedView);
    connect(m_devices, &DeviceTree::camerasChanged, this, &MainWindow::OnCamerasListed);
    connect(m_grid, &ViewGrid::focusedViewChanged, this, &MainWindow::OnFocusedView);
    connect(m_grid, &ViewGrid::message, this, &MainWindow::ShowMessage);
    connect(m_devices, &DeviceTree::message, this, &MainWindow::ShowMessage);
    connect(m_features, &FeatureTree::message, this, &MainWindow::ShowMessage);
    for (int i = 0; i < ViewGrid::MaximumViews; ++i) {
        CameraView* view = m_grid->View(i);
        connect(view, &CameraView::aboutToClose, this, [this](const QString& camera) {
            if (m_features->Camera() == camera) {
                m_features->ShowCamera(QString());
            }
        });
        connect(view, &CameraView::cameraStateChanged, this, &MainWindow::OnCameraState);
    }
    for (QAction* action : m_layouts->actions()) {
        action->setChecked(action->data().toInt() == m_grid->ViewCount());
    }
}

void MainWindow::ShowInFocusedView(const QString& camera)
{
    CameraView* view = m_grid->FocusedView();
    view->Bind(camera);
    if (ViewerBiz3::GetCameraInfo(camera.toStdString(), ViewerBiz3::CAM_OPENED) != "1") {
        view->Open();
    }
}

void MainWindow::OnFocusedView(CameraView* view)
{
    m_features->ShowCamera(view->Camera());
}

void MainWindow::OnCameraState(const QString& camera)
{
    if (camera == m_grid->FocusedView()->Camera()) {
        m_features->ShowCamera(camera);
    }
}

void MainWindow::OnCamerasListed(const QStringList& cameras)
{
    m_grid->SetKnownCameras(cameras);
    QStringList wanted;
    for (const QString& text : m_options.openCameras) {
        wanted << m_devices->Resolve(text);
    }
    if (wanted.isEmpty() || wanted.contains(QString())) {
        return; // wait for a list that has them all
    }
    m_options.openCameras.clear();
    const int count = std::min(static_cast<int>(wanted.size()), static_cast<int>(ViewGrid::MaximumViews));
    if (count > m_grid->ViewCount()) {
        ViewerBiz3::SetImgLayout(static_cast<ViewerBiz3::LAYOUT_TYPE>(ViewGrid::LayoutFor(count)));
    }
    for (int i = count - 1; i >= 0; --i) {
        m_grid->Select(m_grid->View(i));
        ShowInFocusedView(wanted[i]);
        if (m_options.grab) {
            m_grid->View(i)->StartGrab();
        }
    }
}

void MainWindow::ShowMessage(const QString& text)
{
    statusBar()->showMessage(text, 8000);
    m_log->AddViewerMessage(text);
}

void MainWindow::SaveFocusedFrame()
{
    CameraView* view = m_grid->FocusedView();
    const QString file =
        QFileDialog::getSaveFileName(this, "Save shown frame", view->SuggestedFileName(), "PNG images (*.png)");
    if (!file.isEmpty() && !view->SaveShownFrame(file)) {
        ShowMessage(QString("Nothing shown to save in %1").arg(file));
    }
}
