// The device list as the library publishes it: adapters and frame-grabber
// cards with their cameras, each camera with its kind, availability, address
// and whether it shares its adapter's subnet. Above the tree sit the
// transport-type switches (SetTLTypeList) and the refresh button; its context
// menu renames a camera (ModifyCameraId) or gives it a new address
// (ModifyCameraIp).
#pragma once

#include <QStringList>
#include <QWidget>

class LibrarySession;
class QCheckBox;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

class DeviceTree : public QWidget {
    Q_OBJECT
public:
    explicit DeviceTree(LibrarySession& session, QWidget* parent = nullptr);

    const QStringList& Cameras() const { return m_cameras; }
    // The identifier of the camera the user means: identifier, serial number
    // or the name in front of the parenthesis. Empty when none matches.
    QString Resolve(const QString& text) const;
    QTreeWidget* Tree() const { return m_tree; }

public slots:
    void Refresh();
    void ShowList(const QStringList& adapters, const QStringList& cameras);
    void UpdateCamera(const QString& adapter, const QString& camera);
    void ShowTransportTypes(qulonglong mask);
    void Rename(const QString& camera);
    void ChangeAddress(const QString& camera);

signals:
    void camerasChanged(const QStringList& cameras);
    // Double-click or "Show in focused view".
    void cameraActivated(const QString& camera);
    void message(const QString& text);

private:
    void FillCamera(QTreeWidgetItem* item, const QString& camera) const;
    void ShowDetails();
    void ShowMenu(const QPoint& position);
    void ApplyTransportTypes();

    LibrarySession& m_session;
    QTreeWidget* m_tree;
    QLabel* m_details;
    QList<QCheckBox*> m_transports;
    QStringList m_cameras;
};
