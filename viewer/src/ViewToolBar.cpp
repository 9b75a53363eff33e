#include "ViewToolBar.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QStyle>
#include <QToolButton>

namespace {

const char* const NoCamera = "— no camera —";

QComboBox* ModeBox(const QStringList& names, const char* objectName, const QString& tip)
{
    auto* box = new QComboBox;
    box->addItems(names);
    box->setObjectName(objectName);
    box->setToolTip(tip);
    box->setVisible(false);
    return box;
}

} // namespace

ViewToolBar::ViewToolBar(QWidget* parent) : QWidget(parent)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(4, 3, 4, 3);
    row->setSpacing(3);
    m_camera = new QComboBox;
    m_camera->setObjectName("viewCamera");
    m_camera->setMinimumContentsLength(8);
    m_camera->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_camera->setToolTip("Camera shown in this view");
    row->addWidget(m_camera, 1);
    m_open = AddButton("Open", "Open the camera", "viewOpen");
    m_close = AddButton("Close", "Close the camera", "viewClose");
    m_start = AddButton("Start", "Start grabbing", "viewStart");
    m_stop = AddButton("Stop", "Stop grabbing", "viewStop");
    m_open->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    m_close->setIcon(style()->standardIcon(QStyle::SP_DialogCloseButton));
    m_start->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    m_stop->setIcon(style()->standardIcon(QStyle::SP_MediaStop));
    for (QToolButton* button : {m_open, m_close, m_start, m_stop}) {
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        row->addWidget(button);
    }
    m_imageMode =
        ModeBox({"Range image", "Profile", "Profile batch"}, "viewImageMode", "Image mode of the profile camera");
    m_showMode = ModeBox({"Image", "Image + frame info"}, "viewShowMode", "Show mode");
    row->addWidget(m_imageMode);
    row->addWidget(m_showMode);
    m_roi = AddButton("ROI", "Draw regions of interest (drag; right-click removes)", "viewRoi");
    m_roi->setCheckable(true);
    row->addWidget(m_roi);
    QToolButton* fit = AddButton("Fit", "Fit the picture to the view (or double-click it)", "viewFit");
    row->addWidget(fit);
    m_save = AddButton("Save", "Save the shown frame as PNG", "viewSave");
    m_save->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    row->addWidget(m_save);

    connect(m_camera, &QComboBox::activated, this,
            [this](int index) { emit cameraChosen(index == 0 ? QString() : m_camera->itemText(index)); });
    connect(m_open, &QToolButton::clicked, this, &ViewToolBar::openClicked);
    connect(m_close, &QToolButton::clicked, this, &ViewToolBar::closeClicked);
    connect(m_start, &QToolButton::clicked, this, &ViewToolBar::startClicked);
    connect(m_stop, &QToolButton::clicked, this, &ViewToolBar::stopClicked);
    connect(m_imageMode, &QComboBox::activated, this, &ViewToolBar::imageModeChosen);
    connect(m_showMode, &QComboBox::activated, this, &ViewToolBar::showModeChosen);
    connect(m_roi, &QToolButton::toggled, this, &ViewToolBar::roiToolToggled);
    connect(fit, &QToolButton::clicked, this, &ViewToolBar::fitClicked);
    connect(m_save, &QToolButton::clicked, this, &ViewToolBar::saveClicked);
    SetCameras({}, QString());
    SetState(false, false, false);
}

QToolButton* ViewToolBar::AddButton(const QString& text, const QString& tip, const char* name)
{
    auto* button = new QToolButton;
    button->setText(text);
    button->setToolTip(tip);
    button->setObjectName(name);
    button->setAutoRaise(true);
    return button;
}

void ViewToolBar::SetCameras(const QStringList& cameras, const QString& current)
{
    const QSignalBlocker blocker(m_camera);
    m_camera->clear();
    m_camera->addItem(NoCamera);
    m_camera->addItems(cameras);
    if (!current.isEmpty() && !cameras.contains(current)) {
        m_camera->addItem(current);
    }
    m_camera->setCurrentIndex(current.isEmpty() ? 0 : m_camera->findText(current));
}

void ViewToolBar::SetState(bool bound, bool opened, bool grabbing)
{
    m_open->setEnabled(bound && !opened);
    m_close->setEnabled(opened);
    m_start->setEnabled(opened && !grabbing);
    m_stop->setEnabled(grabbing);
    m_imageMode->setEnabled(opened);
}

void ViewToolBar::SetKind(int kind)
{
    m_imageMode->setVisible(kind == ProfileKind);
    m_showMode->setVisible(kind == ShowModeKind);
}

void ViewToolBar::SetImageMode(int mode)
{
    if (mode >= 0 && mode < m_imageMode->count()) {
        const QSignalBlocker blocker(m_imageMode);
        m_imageMode->setCurrentIndex(mode);
    }
}

void ViewToolBar::SetShowMode(int mode)
{
    if (mode >= 0 && mode < m_showMode->count()) {
        const QSignalBlocker blocker(m_showMode);
        m_showMode->setCurrentIndex(mode);
    }
}
