// The library's notifications as Qt signals. Listener callbacks arrive on
// library threads (discovery, acquisition, any thread that logs) or, for
// changes the viewer asked for, on its own thread inside the library call.
// Every callback only emits; receivers connect with Qt::QueuedConnection, so
// the work happens later on the GUI thread and never inside a library call,
// where calling the library again could wait on the list being walked.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <ViewerBiz3/ViewerBiz3.h>

class LibraryEvents : public QObject,
                      public ViewerBiz3::ITLTypeUpdate,
                      public ViewerBiz3::IDeviceListUpdate,
                      public ViewerBiz3::IFocusUpdate,
                      public ViewerBiz3::ILayoutUpdate,
                      public ViewerBiz3::IImageModeUpdate,
                      public ViewerBiz3::ISLImageShowModeUpdate,
                      public ViewerBiz3::IAcqStatisticUpdate,
                      public ViewerBiz3::ILoggerUpdate,
                      public ViewerBiz3::ILangUpdate,
                      public ViewerBiz3::ICameraIdUpdate {
    Q_OBJECT
public:
    explicit LibraryEvents(QObject* parent = nullptr);
    ~LibraryEvents() override;

    // Registers with every list; the destructor unregisters.
    void Register();

    void OnTLTypeUpdate(unsigned long long mask) override;
    void OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second) override;
    void OnFocusUpdate(ViewerBiz3::FOCUS_TYPE type, std::string deviceId) override;
    void OnLayoutUpdate(ViewerBiz3::LAYOUT_TYPE layout) override;
    void OnImageModeUpdate(std::string cameraKey, int imageMode) override;
    void OnSLImageShowModeUpdate(std::string cameraId, int showMode) override;
    void OnAcqStatisticUpdate(std::string cameraName, bool fromSetInfo) override;
    void OnLoggerUpdate(std::string source, std::string level, std::string message) override;
    void OnLangUpdate(std::string language) override;
    void OnCameraIdUpdate(std::string oldId, std::string newName) override;

signals:
    void transportTypesChanged(qulonglong mask);
    // A whole list: adapter keys and camera identifiers.
    void deviceListChanged(const QStringList& adapters, const QStringList& cameras);
    // One device changed (opened, closed, lost): its adapter key and identifier.
    void deviceChanged(const QString& adapter, const QString& camera);
    void focusChanged(int type, const QString& deviceId);
    void layoutChanged(int views);
    void imageModeChanged(const QString& camera, int mode);
    void showModeChanged(const QString& camera, int mode);
    void statisticsChanged(const QString& camera);
    void logLine(const QString& source, const QString& level, const QString& message);
    void languageChanged(const QString& language);
    void cameraRenamed(const QString& oldId, const QString& newId);

private:
    bool m_registered = false;
};
