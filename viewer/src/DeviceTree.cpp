#include "DeviceTree.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <ViewerBiz3/ViewerBiz3.h>

#include "IpDialog.h"
#include "LibrarySession.h"

using namespace ViewerBiz3;

namespace {

enum Column { NameColumn, KindColumn, AddressColumn, StateColumn };
constexpr int CameraRole = Qt::UserRole;

struct Transport {
    const char* label;
    unsigned long long bit;
};
const Transport Transports[] = {{"GigE", 1}, {"USB3", 2}, {"CL", 4}, {"Simulated", 8}};

QString Info(const QString& camera, CAM_INFO field)
{
    return QString::fromStdString(GetCameraInfo(camera.toStdString(), field));
}

QString KindName(int kind)
{
    switch (kind) {
    case 0:
        return "GigE area";
    case 1:
        return "Profile";
    case 3:
        return "USB3";
    case 4:
        return "Camera Link";
    case 5:
        return "Show-mode";
    default:
        return QString("Kind %1").arg(kind);
    }
}

QString AdapterTitle(const QString& key)
{
    const std::string id = key.toStdString();
    const QString name = QString::fromStdString(GetCardInfo(id, CARD_INTERFACE_NAME));
    return name.isEmpty() ? key : name;
}

} // namespace

DeviceTree::DeviceTree(LibrarySession& session, QWidget* parent) : QWidget(parent), m_session(session)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    auto* switches = new QHBoxLayout;
    for (const Transport& transport : Transports) {
        auto* box = new QCheckBox(transport.label);
        box->setObjectName(QString("transport%1").arg(transport.label));
        box->setToolTip("Search this transport at the next refresh");
        connect(box, &QCheckBox::clicked, this, &DeviceTree::ApplyTransportTypes);
        m_transports << box;
        switches->addWidget(box);
    }
    switches->addStretch();
    auto* refresh = new QPushButton("Refresh");
    refresh->setObjectName("refreshDevices");
    switches->addWidget(refresh);
    column->addLayout(switches);
    m_tree = new QTreeWidget;
    m_tree->setObjectName("deviceTree");
    m_tree->setHeaderLabels({"Device", "Kind", "Address", "State"});
    m_tree->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_tree->header()->setStretchLastSection(true);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->setRootIsDecorated(true);
    m_tree->setUniformRowHeights(true);
    column->addWidget(m_tree, 3);
    m_details = new QLabel;
    m_details->setObjectName("deviceDetails");
    m_details->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details->setMargin(6);
    m_details->setWordWrap(true);
    column->addWidget(m_details, 2);

    connect(refresh, &QPushButton::clicked, this, &DeviceTree::Refresh);
    connect(m_tree, &QTreeWidget::customContextMenuRequested, this, &DeviceTree::ShowMenu);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &DeviceTree::ShowDetails);
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        const QString camera = item->data(NameColumn, CameraRole).toString();
        if (!camera.isEmpty()) {
            emit cameraActivated(camera);
        }
    });
    LibraryEvents& events = session.Events();
    connect(&events, &LibraryEvents::deviceListChanged, this, &DeviceTree::ShowList, Qt::QueuedConnection);
    connect(&events, &LibraryEvents::deviceChanged, this, &DeviceTree::UpdateCamera, Qt::QueuedConnection);
    connect(&events, &LibraryEvents::transportTypesChanged, this, &DeviceTree::ShowTransportTypes,
            Qt::QueuedConnection);
    connect(&events, &LibraryEvents::cameraRenamed, this, &DeviceTree::Refresh, Qt::QueuedConnection);
    ShowTransportTypes(GetTLTypeList());
}

void DeviceTree::Refresh()
{
    RefreshCameraList(static_cast<int>(GetTLTypeList()));
}

QString DeviceTree::Resolve(const QString& text) const
{
    for (const QString& camera : m_cameras) {
        if (text == camera || text == Info(camera, CAM_SERIAL) || text == camera.left(camera.lastIndexOf('('))) {
            return camera;
        }
    }
    return QString();
}

void DeviceTree::ShowList(const QStringList& adapters, const QStringList& cameras)
{
    const QString selected =
        m_tree->currentItem() != nullptr ? m_tree->currentItem()->data(NameColumn, CameraRole).toString() : QString();
    m_tree->clear();
    QHash<QString, QTreeWidgetItem*> adapterItems;
    for (const QString& adapter : adapters) {
        auto* item = new QTreeWidgetItem(m_tree, {AdapterTitle(adapter), "Adapter",
                                                  QString::fromStdString(GetCardInfo(adapter.toStdString(), CARD_IP))});
        item->setIcon(NameColumn, style()->standardIcon(QStyle::SP_DriveNetIcon));
        adapterItems.insert(adapter, item);
    }
    for (const QString& camera : cameras) {
        QTreeWidgetItem* parent = adapterItems.value(Info(camera, CAM_LIST_KEY));
        if (parent == nullptr) {
            const QString key =
                Info(camera, CAM_LIST_KEY).isEmpty() ? QString("No adapter") : Info(camera, CAM_LIST_KEY);
            parent = new QTreeWidgetItem(m_tree, {key, "Adapter"});
            parent->setIcon(NameColumn, style()->standardIcon(QStyle::SP_DriveNetIcon));
            adapterItems.insert(Info(camera, CAM_LIST_KEY), parent);
        }
        auto* item = new QTreeWidgetItem(parent);
        item->setData(NameColumn, CameraRole, camera);
        item->setIcon(NameColumn, style()->standardIcon(QStyle::SP_ComputerIcon));
        FillCamera(item, camera);
        if (camera == selected || (selected.isEmpty() && m_tree->currentItem() == nullptr)) {
            m_tree->setCurrentItem(item);
        }
    }
    m_tree->expandAll();
    ShowDetails();
    if (m_cameras != cameras) {
        m_cameras = cameras;
        emit camerasChanged(cameras);
    }
}

void DeviceTree::FillCamera(QTreeWidgetItem* item, const QString& camera) const
{
    const bool available = Info(camera, CAM_AVAILABLE) == "1";
    // Only a GigE camera has a subnet to share with its adapter.
    const bool sameSegment = Info(camera, CAM_IP).isEmpty() || Info(camera, CAM_SAME_SEGMENT) != "0";
    QString state = Info(camera, CAM_GRABBING) == "1" ? "Grabbing"
                    : Info(camera, CAM_OPENED) == "1" ? "Open"
                    : available                       ? "Available"
                                                      : "Unavailable";
    if (!sameSegment) {
        state += " · other subnet";
    }
    item->setText(NameColumn, camera);
    item->setText(KindColumn, KindName(Info(camera, CAM_KIND).toInt()));
    item->setText(AddressColumn, Info(camera, CAM_IP));
    item->setText(StateColumn, state);
    item->setForeground(StateColumn, !available || !sameSegment ? QColor(240, 110, 90)
                                     : state == "Available"     ? QColor(150, 160, 170)
                                                                : QColor(80, 210, 140));
    item->setToolTip(NameColumn,
                     QString("%1\nModel %2\nSerial %3\nMAC %4")
                         .arg(camera, Info(camera, CAM_MODEL_NAME), Info(camera, CAM_SERIAL), Info(camera, CAM_MAC)));
}

void DeviceTree::ShowDetails()
{
    QTreeWidgetItem* item = m_tree->currentItem();
    const QString camera = item != nullptr ? item->data(NameColumn, CameraRole).toString() : QString();
    if (camera.isEmpty()) {
        m_details->setText("<span style='color:#7d8793'>Select a camera for its details. Double-click shows it in "
                           "the focused view; the context menu renames it or changes its address.</span>");
        return;
    }
    const std::pair<const char*, CAM_INFO> rows[] = {
        {"Model", CAM_MODEL_NAME},     {"Serial", CAM_SERIAL}, {"Vendor", CAM_DEVICE_TEXT},
        {"Version", CAM_DEVICE_TEXT2}, {"IP", CAM_IP},         {"Mask", CAM_MASK},
        {"Gateway", CAM_GATEWAY},      {"MAC", CAM_MAC},       {"Adapter", CAM_LIST_KEY}};
    QString html = QString("<b>%1</b><table cellspacing='3'>").arg(camera.toHtmlEscaped());
    for (const auto& [label, field] : rows) {
        const QString value = Info(camera, field);
        if (!value.isEmpty()) {
            html += QString("<tr><td style='color:#7d8793'>%1</td><td>%2</td></tr>").arg(label, value.toHtmlEscaped());
        }
    }
    m_details->setText(html + "</table>");
}

void DeviceTree::UpdateCamera(const QString&, const QString& camera)
{
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it) {
        if ((*it)->data(NameColumn, CameraRole).toString() == camera) {
            FillCamera(*it, camera);
        }
    }
    ShowDetails();
}

void DeviceTree::ShowTransportTypes(qulonglong mask)
{
    for (int i = 0; i < m_transports.size(); ++i) {
        m_transports[i]->setChecked((mask & Transports[i].bit) != 0);
    }
}

void DeviceTree::ApplyTransportTypes()
{
    unsigned long long mask = 0;
    for (int i = 0; i < m_transports.size(); ++i) {
        mask |= m_transports[i]->isChecked() ? Transports[i].bit : 0;
    }
    SetTLTypeList(mask);
    Refresh();
}

void DeviceTree::ShowMenu(const QPoint& position)
{
    QTreeWidgetItem* item = m_tree->itemAt(position);
    const QString camera = item != nullptr ? item->data(NameColumn, CameraRole).toString() : QString();
    if (camera.isEmpty()) {
        return;
    }
    QMenu menu(this);
    menu.addAction("Show in focused view", this, [this, camera] { emit cameraActivated(camera); });
    menu.addAction("Rename…", this, [this, camera] { Rename(camera); });
    QAction* address = menu.addAction("Change IP address…", this, [this, camera] { ChangeAddress(camera); });
    address->setEnabled(!Info(camera, CAM_IP).isEmpty());
    menu.exec(m_tree->viewport()->mapToGlobal(position));
}

void DeviceTree::Rename(const QString& camera)
{
    bool ok = false;
    const QString current = camera.left(camera.lastIndexOf('('));
    const QString name =
        QInputDialog::getText(this, "Rename camera", "New user name (DeviceUserID). The camera must be open.",
                              QLineEdit::Normal, current, &ok);
    if (!ok || name.isEmpty() || name == current) {
        return;
    }
    const int result = ModifyCameraId(camera.toStdString(), name.toStdString());
    if (result != 0) {
        emit message(QString("Renaming %1 failed (code %2)").arg(camera).arg(result));
    }
}

void DeviceTree::ChangeAddress(const QString& camera)
{
    IpDialog dialog(camera, Info(camera, CAM_IP), Info(camera, CAM_MASK), Info(camera, CAM_GATEWAY), this);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const int result = ModifyCameraIp(camera.toStdString(), dialog.Ip().toStdString(), dialog.Mask().toStdString(),
                                      dialog.Gateway().toStdString(), dialog.Persistent());
    emit message(result == 0 ? QString("%1 now answers at %2").arg(camera, dialog.Ip())
                             : QString("Changing the address of %1 failed (code %2)").arg(camera).arg(result));
    Refresh();
}
