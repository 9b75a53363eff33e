#include "LibrarySession.h"

#include <unistd.h>

#include <climits>
#include <cstdio>

LibrarySession::LibrarySession(unsigned long long transportMask, bool verbose) : m_verbose(verbose)
{
    // Init answers -1 when the library is up and 0 when it is not.
    m_started = ViewerBiz3::Init() != 0;
    if (!m_started) {
        return;
    }
    ViewerBiz3::RegisterLoggerUpdateListener(this);
    ViewerBiz3::RegisterDeviceListUpdateListener(this);
    ViewerBiz3::SetTLTypeList(transportMask);
}

LibrarySession::~LibrarySession()
{
    // UnInit drops every listener before it closes the devices.
    ViewerBiz3::UnInit();
}

bool LibrarySession::RefreshDeviceList(std::chrono::seconds timeout)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const unsigned long before = m_listsReceived;
    lock.unlock();
    ViewerBiz3::RefreshCameraList(static_cast<int>(ViewerBiz3::GetTLTypeList()));
    lock.lock();
    return m_listArrived.wait_for(lock, timeout, [&] { return m_listsReceived != before; });
}

std::vector<std::string> LibrarySession::CameraIds()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_cameraIds;
}

std::string LibrarySession::ResolveCamera(const std::string& text)
{
    for (const std::string& id : CameraIds()) {
        const std::string serial = ViewerBiz3::GetCameraInfo(id, ViewerBiz3::CAM_SERIAL);
        const std::string name = id.substr(0, id.rfind('('));
        if (text == id || text == serial || text == name) {
            return id;
        }
    }
    return std::string();
}

std::string LibrarySession::ApplicationDirectory()
{
    char path[PATH_MAX] = {};
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
    if (length > 0) {
        std::string executable(path, static_cast<std::size_t>(length));
        return executable.substr(0, executable.rfind('/'));
    }
    char directory[PATH_MAX] = {};
    return getcwd(directory, sizeof(directory)) != nullptr ? std::string(directory) : std::string(".");
}

std::string LibrarySession::LogFilePath()
{
    return ApplicationDirectory() + "/Log/ZYLViewerLog.txt";
}

std::string LibrarySession::SettingsFilePath()
{
    return ApplicationDirectory() + "/Configuration.ini";
}

void LibrarySession::OnDeviceListUpdate(int kind, std::vector<std::string> /*first*/, std::vector<std::string> second)
{
    if (kind != 0) {
        return;
    }
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_cameraIds = std::move(second);
        ++m_listsReceived;
    }
    m_listArrived.notify_all();
}

void LibrarySession::OnLoggerUpdate(std::string source, std::string level, std::string message)
{
    if (m_verbose || (level != "Debug" && level != "Info")) {
        std::fprintf(stderr, "[library %s] %s: %s\n", level.c_str(), source.c_str(), message.c_str());
    }
}
