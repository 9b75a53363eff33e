// One use of the library from Init to UnInit: the transport selection, the
// device list as discovery publishes it, and the library's warnings shown on
// the terminal.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include <ViewerBiz3/ViewerBiz3.h>

class LibrarySession : public ViewerBiz3::IDeviceListUpdate, public ViewerBiz3::ILoggerUpdate {
public:
    // Starts the library and limits discovery to the given transport mask
    // before anything is searched. verbose also shows the library's info lines.
    LibrarySession(unsigned long long transportMask, bool verbose);
    ~LibrarySession() override;
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;

    bool Started() const { return m_started; }
    // Asks for a discovery pass and waits for the list it publishes.
    bool RefreshDeviceList(std::chrono::seconds timeout);
    std::vector<std::string> CameraIds();
    // The identifier of the camera a user means: its identifier, its serial
    // number or the name in front of the parenthesis. Empty if none matches.
    std::string ResolveCamera(const std::string& text);

    // Where the library keeps its files: the directory of the executable.
    static std::string ApplicationDirectory();
    static std::string LogFilePath();
    static std::string SettingsFilePath();

    // Discovery thread: a whole list (kind 0) replaces the known cameras.
    void OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second) override;
    // Any thread. Only prints: a logger listener must not log with notify.
    void OnLoggerUpdate(std::string source, std::string level, std::string message) override;

private:
    bool m_started = false;
    const bool m_verbose;
    std::mutex m_mutex;
    std::condition_variable m_listArrived;
    std::vector<std::string> m_cameraIds;
    unsigned long m_listsReceived = 0;
};
