#include "LibrarySession.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdlib>

namespace {

constexpr unsigned long long SimulatedTransport = 8;

void CreateSettingsFile()
{
    QFile settings(LibrarySession::SettingsFile());
    if (!settings.exists() && settings.open(QIODevice::WriteOnly)) {
        settings.close();
    }
}

} // namespace

LibrarySession::LibrarySession(bool simulated)
{
    if (simulated) {
        setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
    }
    CreateSettingsFile();
    // Init answers -1 when the library is up and 0 when it is not.
    m_started = ViewerBiz3::Init() != 0;
    m_events = std::make_unique<LibraryEvents>();
    if (!m_started) {
        return;
    }
    m_events->Register();
    m_rois = std::make_unique<RoiRegistry>();
    ViewerBiz3::RegisterImageUpdateListener("", &m_frames);
    if (simulated) {
        ViewerBiz3::SetTLTypeList(SimulatedTransport);
    }
}

LibrarySession::~LibrarySession()
{
    if (m_started) {
        for (const std::string& camera : ViewerBiz3::GetOpenedCameraIds()) {
            ViewerBiz3::StopGrab(camera);
        }
        ViewerBiz3::UnRegisterImageUpdateListener("", &m_frames);
    }
    m_rois.reset();
    m_events.reset();
    if (m_started) {
        ViewerBiz3::UnInit();
    }
}

QString LibrarySession::SettingsFile()
{
    return QCoreApplication::applicationDirPath() + "/Configuration.ini";
}
