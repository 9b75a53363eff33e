// Collects what the library forwards to logger listeners, for tests that check log lines.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3Listeners.h"
#include "events/EventManager.h"

class CameraLogRecorder final : public ViewerBiz3::ILoggerUpdate {
public:
    // Registers with the process's event manager; unregisters when destroyed.
    CameraLogRecorder() { m_event.RegisterLoggerUpdateListener(this); }
    ~CameraLogRecorder() override { m_event.UnRegisterLoggerUpdateListener(this); }
    CameraLogRecorder(const CameraLogRecorder&) = delete;
    CameraLogRecorder& operator=(const CameraLogRecorder&) = delete;

    void OnLoggerUpdate(std::string source, std::string level, std::string message) override;

    // Lines whose message starts with the prefix (all lines for "").
    std::size_t Count(const std::string& messagePrefix) const;
    bool Contains(const std::string& level, const std::string& message) const;

private:
    struct Line {
        std::string level;
        std::string message;
    };

    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
};
