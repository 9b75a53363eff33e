#include "CameraView.h"

#include <QFileDialog>
#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <chrono>

#include "FrameDecoder.h"
#include "ImageCanvas.h"
#include "LibrarySession.h"
#include "PixelFormat.h"
#include "ProfilePlot.h"
#include "ViewToolBar.h"

using namespace ViewerBiz3;

namespace {

std::string Id(const QString& camera)
{
    return camera.toStdString();
}

QString Info(const QString& camera, CAM_INFO field)
{
    return QString::fromStdString(GetCameraInfo(Id(camera), field));
}

QString Number(const QString& text, int decimals)
{
    return QString::number(text.toDouble(), 'f', decimals);
}

} // namespace

CameraView::CameraView(LibrarySession& session, int number, QWidget* parent)
    : QFrame(parent), m_session(session), m_number(number)
{
    setObjectName(QString("view%1").arg(number));
    setFrameShape(QFrame::Box);
    setLineWidth(2);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(2, 2, 2, 2);
    column->setSpacing(0);
    m_controls = new ViewToolBar;
    m_pages = new QStackedWidget;
    m_canvas = new ImageCanvas;
    m_plot = new ProfilePlot;
    m_pages->addWidget(m_canvas);
    m_pages->addWidget(m_plot);
    auto* status = new QWidget;
    status->setObjectName("viewStatus");
    auto* statusRow = new QHBoxLayout(status);
    statusRow->setContentsMargins(6, 2, 6, 2);
    m_statistics = new QLabel;
    m_statistics->setObjectName("viewStatistics");
    m_statistics->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_cursor = new QLabel;
    m_cursor->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    statusRow->addWidget(m_statistics, 1);
    statusRow->addWidget(m_cursor);
    column->addWidget(m_controls);
    column->addWidget(m_pages, 1);
    column->addWidget(status);

    qRegisterMetaType<DisplayFrame>();
    connect(this, &CameraView::frameReady, this, &CameraView::Show, Qt::QueuedConnection);
    connect(m_controls, &ViewToolBar::cameraChosen, this, &CameraView::Bind);
    connect(m_controls, &ViewToolBar::openClicked, this, &CameraView::Open);
    connect(m_controls, &ViewToolBar::closeClicked, this, &CameraView::Close);
    connect(m_controls, &ViewToolBar::startClicked, this, &CameraView::StartGrab);
    connect(m_controls, &ViewToolBar::stopClicked, this, &CameraView::StopGrab);
    connect(m_controls, &ViewToolBar::imageModeChosen, this,
            [this](int mode) { Report("Set image mode", SetCameraImageMode(Id(m_camera), mode, true)); });
    connect(m_controls, &ViewToolBar::showModeChosen, this,
            [this](int mode) { SetSLImageShowMode(Id(m_camera), mode); });
    connect(m_controls, &ViewToolBar::roiToolToggled, m_canvas, &ImageCanvas::SetRoiTool);
    connect(m_controls, &ViewToolBar::fitClicked, m_canvas, &ImageCanvas::FitToView);
    connect(m_controls, &ViewToolBar::saveClicked, this, &CameraView::SaveWithDialog);
    connect(m_canvas, &ImageCanvas::cursorInfo, m_cursor, &QLabel::setText);
    connect(m_canvas, &ImageCanvas::clicked, this, [this] { emit focusRequested(this); });
    connect(m_canvas, &ImageCanvas::regionDrawn, this, [this](const QRect& r) {
        int index = 0;
        bool drawn = false;
        DrawROI(Id(m_camera), r.x(), r.y(), r.width(), r.height(), index, drawn, 0, 0);
    });
    connect(m_canvas, &ImageCanvas::regionMoved, this,
            [this](int index, const QRect& r) { SetROIPos(Id(m_camera), index, r.x(), r.y(), r.width(), r.height()); });
    connect(m_canvas, &ImageCanvas::regionRemoveRequested, this, [this](int index) { RomoveROI(Id(m_camera), index); });
    connect(
        &m_session.Rois(), &RoiRegistry::regionsChanged, this,
        [this](const QString& camera) {
            if (camera == m_camera) {
                UpdateRegions();
            }
        },
        Qt::QueuedConnection);
    Bind(QString());
}

CameraView::~CameraView()
{
    m_session.Frames().Detach(this);
}

void CameraView::Bind(const QString& camera)
{
    m_session.Frames().Detach(this);
    m_camera = camera;
    m_kind = camera.isEmpty() ? 0 : Info(camera, CAM_KIND).toInt();
    m_profileCamera = m_kind == ViewToolBar::ProfileKind;
    m_controls->SetCameras(m_knownCameras, camera);
    m_controls->SetKind(m_kind);
    m_pages->setCurrentWidget(m_canvas);
    m_canvas->Clear(
        camera.isEmpty()
            ? QString("View %1: choose a camera here or double-click one in the device tree").arg(m_number + 1)
            : QString("%1\nopen and start it to see live images").arg(camera));
    m_plot->SetProfile({});
    m_rangeImage.Clear();
    m_canvas->SetPixelAspect(1.0);
    if (!camera.isEmpty()) {
        m_session.Frames().Attach(camera, this);
        if (m_kind == ViewToolBar::ShowModeKind) {
            m_showMode = std::max(0, GetSLImageShowMode(Id(camera)));
            m_controls->SetShowMode(m_showMode);
        }
    }
    UpdateRegions();
    RefreshState();
    emit focusRequested(this);
}

void CameraView::SetKnownCameras(const QStringList& cameras)
{
    m_knownCameras = cameras;
    m_controls->SetCameras(cameras, m_camera);
}

void CameraView::SetFocused(bool focused)
{
    m_focused = focused;
    setProperty("focused", focused);
    setStyleSheet(focused ? "CameraView { border: 2px solid #2bb3e6; }" : "CameraView { border: 2px solid #2a2f36; }");
}

int CameraView::Open()
{
    const int result = OpenCamera(Id(m_camera));
    Report("Open", result);
    if (result == 0 && m_kind == ViewToolBar::ProfileKind) {
        m_controls->SetImageMode(GetCameraImageMode(Id(m_camera)));
    }
    RefreshState();
    return result;
}

int CameraView::Close()
{
    emit aboutToClose(m_camera);
    const int result = CloseCamera(Id(m_camera));
    Report("Close", result);
    RefreshState();
    return result;
}

int CameraView::StartGrab()
{
    const int result = ViewerBiz3::StartGrab(Id(m_camera));
    Report("Start", result);
    RefreshState();
    return result;
}

int CameraView::StopGrab()
{
    const int result = ViewerBiz3::StopGrab(Id(m_camera));
    Report("Stop", result);
    RefreshState();
    return result;
}

void CameraView::Report(const char* action, int result)
{
    emit cameraStateChanged(m_camera);
    if (result != 0) {
        emit message(QString("%1 %2 failed (code %3)").arg(action, m_camera).arg(result));
    }
}

void CameraView::RefreshState()
{
    const bool bound = !m_camera.isEmpty();
    const bool opened = bound && Info(m_camera, CAM_OPENED) == "1";
    const bool grabbing = opened && Info(m_camera, CAM_GRABBING) == "1";
    m_controls->SetState(bound, opened, grabbing);
    if (!bound) {
        m_statistics->setText("No camera");
    } else if (!opened) {
        m_statistics->setText(QString("%1 · closed").arg(m_camera));
    } else if (!grabbing && m_shownFrames == 0) {
        m_statistics->setText(QString("%1 · open").arg(m_camera));
    }
}

QString CameraView::StatusText() const
{
    return m_statistics->text();
}

void CameraView::OnStatistics(const QString& camera)
{
    if (camera != m_camera) {
        return;
    }
    m_statistics->setText(QString("Frames %1 · %2 fps · %3 Mbit/s · err %4 · disp %5 fps")
                              .arg(Info(camera, CAM_FRAME_COUNT), Number(Info(camera, CAM_FRAME_RATE), 1),
                                   Number(Info(camera, CAM_BANDWIDTH), 1), Info(camera, CAM_ERROR_COUNT),
                                   Number(Info(camera, CAM_DISPLAY_RATE), 1)));
    RefreshState();
}

void CameraView::OnImageMode(const QString& camera, int mode)
{
    if (camera == m_camera) {
        m_controls->SetImageMode(mode);
    }
}

void CameraView::OnShowMode(const QString& camera, int mode)
{
    if (camera == m_camera) {
        m_showMode = mode;
        m_controls->SetShowMode(mode);
    }
}

void CameraView::OnRenamed(const QString& oldId, const QString& newId)
{
    if (oldId == m_camera) {
        m_session.Frames().Rename(oldId, newId);
        m_camera = newId;
        m_controls->SetCameras(m_knownCameras, newId);
    }
}

void CameraView::Consume(ZYLGENICAM::IImage& image, int imageMode)
{
    constexpr std::int64_t ShortestInterval = 25'000'000; // ns
    const std::int64_t now =
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now().time_since_epoch())
            .count();
    if (now - m_lastConversion < ShortestInterval || m_framePending.exchange(true)) {
        return;
    }
    m_lastConversion = now;
    DisplayFrame frame;
    if (!FrameDecoder::Decode(image, m_profileCamera, imageMode, frame)) {
        m_framePending = false;
        return;
    }
    emit frameReady(frame);
}

void CameraView::Show(const DisplayFrame& frame)
{
    m_framePending = false;
    ++m_shownFrames;
    m_shownFrameId = frame.frameId;
    if (!frame.profile.isEmpty()) {
        m_pages->setCurrentWidget(m_plot);
        m_plot->SetProfile(frame.profile);
        return;
    }
    m_pages->setCurrentWidget(m_canvas);
    if (m_profileCamera) {
        m_rangeImage.Append(frame.image, frame.sensorValues);
        // Far more points than lines: shown at a third of the width's height.
        m_canvas->SetPixelAspect(double(frame.image.width()) / (3.0 * RangeImageStack::Lines));
        m_canvas->SetPicture(m_rangeImage.Picture(), m_rangeImage.Heights());
        return;
    }
    m_canvas->SetOverlayText(m_kind == ViewToolBar::ShowModeKind && m_showMode == 1
                                 ? QString("Frame %1\n%2 × %3  %4")
                                       .arg(frame.frameId)
                                       .arg(frame.image.width())
                                       .arg(frame.image.height())
                                       .arg(PixelFormat::Name(frame.pixelFormat))
                                 : QString());
    m_canvas->SetPicture(frame.image, frame.sensorValues);
}

bool CameraView::SaveShownFrame(const QString& file) const
{
    if (m_pages->currentWidget() == m_plot) {
        return !m_plot->Profile().isEmpty() && m_plot->grab().save(file, "PNG");
    }
    return !m_canvas->Picture().isNull() && m_canvas->Picture().save(file, "PNG");
}

QString CameraView::SuggestedFileName() const
{
    const QString folder = QString::fromStdString(GetParamterInfo(PARAM_IMAGE_PATH));
    const QString name = QString("%1-%2.png").arg(m_camera.isEmpty() ? QString("frame") : m_camera).arg(m_shownFrameId);
    return folder.isEmpty() ? name : folder + "/" + name;
}

void CameraView::SaveWithDialog()
{
    const QString file =
        QFileDialog::getSaveFileName(this, "Save shown frame", SuggestedFileName(), "PNG images (*.png)");
    if (!file.isEmpty() && !SaveShownFrame(file)) {
        emit message(QString("Could not save %1").arg(file));
    }
}

void CameraView::UpdateRegions()
{
    m_canvas->SetRegions(m_camera.isEmpty() ? QMap<int, QRect>() : m_session.Rois().Regions(m_camera));
}
