#include "support/common/CameraLogRecorder.h"

#include "events/EventManager.h"

CameraLogRecorder::CameraLogRecorder()
{
    m_event.RegisterLoggerUpdateListener(this);
}

CameraLogRecorder::~CameraLogRecorder()
{
    m_event.UnRegisterLoggerUpdateListener(this);
}

void CameraLogRecorder::OnLoggerUpdate(std::string, std::string level, std::string message)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.push_back({std::move(level), std::move(message)});
}

std::size_t CameraLogRecorder::Count(const std::string& messagePrefix) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t count = 0;
    for (const Line& line : m_lines)
        count += line.message.rfind(messagePrefix, 0) == 0 ? 1 : 0;
    return count;
}

bool CameraLogRecorder::Contains(const std::string& level, const std::string& message) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const Line& line : m_lines) {
        if (line.level == level && line.message == message)
            return true;
    }
    return false;
}
