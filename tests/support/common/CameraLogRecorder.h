// Collects what the library forwards to logger listeners, for tests that check log lines.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3Listeners.h"

class CameraLogRecorder final : public ViewerBiz3::ILoggerUpdate {
public:
    struct Line {
        std::string source;
        std::string level;
        std::string message;
    };

    // Registers with the process's event manager; unregisters when destroyed.
    CameraLogRecorder();
    ~CameraLogRecorder() override;
    CameraLogRecorder(const CameraLogRecorder&) = delete;
    CameraLogRecorder& operator=(const CameraLogRecorder&) = delete;

    void OnLoggerUpdate(std::string source, std::string level, std::string message) override;

    std::vector<Line> Lines() const;
    // Lines whose message starts with the prefix.
    std::size_t Count(const std::string& messagePrefix) const;
    bool Contains(const std::string& level, const std::string& message) const;

private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
};
