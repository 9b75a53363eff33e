// The viewer's window: the device tree on the left, the views in the middle,
// the focused camera's features on the right and the log below; a tool bar
// with the layout, save and language.
#pragma once

#include <QMainWindow>

#include "ViewerOptions.h"

class CameraView;
class DeviceTree;
class FeatureTree;
class LibrarySession;
class LogPanel;
class QActionGroup;
class QComboBox;
class QLabel;
class ViewGrid;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    MainWindow(LibrarySession& session, const ViewerOptions& options, QWidget* parent = nullptr);

    ViewGrid* Grid() const { return m_grid; }
    DeviceTree* Devices() const { return m_devices; }
    FeatureTree* Features() const { return m_features; }
    LogPanel* Log() const { return m_log; }

    // Binds the camera to the focused view and opens it.
    void ShowInFocusedView(const QString& camera);

private:
    void CreateToolBar();
    void CreateDocks();
    void Connect();
    void OnFocusedView(CameraView* view);
    void OnCameraState(const QString& camera);
    void OnCamerasListed(const QStringList& cameras);
    void ShowMessage(const QString& text);
    void SaveFocusedFrame();

    LibrarySession& m_session;
    ViewerOptions m_options;
    ViewGrid* m_grid;
    DeviceTree* m_devices;
    FeatureTree* m_features;
    LogPanel* m_log;
    QActionGroup* m_layouts = nullptr;
    QComboBox* m_language = nullptr;
    QLabel* m_languageLabel = nullptr;
};
