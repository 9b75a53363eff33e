#include "support/common/CameraLogRecorder.h"

#include <algorithm>

void CameraLogRecorder::OnLoggerUpdate(std::string, std::string level, std::string message)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lines.push_back({std::move(level), std::move(message)});
}

std::size_t CameraLogRecorder::Count(const std::string& messagePrefix) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::count_if(m_lines.begin(), m_lines.end(),
                         [&](const Line& line) { return line.message.rfind(messagePrefix, 0) == 0; });
}

bool CameraLogRecorder::Contains(const std::string& level, const std::string& message) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::any_of(m_lines.begin(), m_lines.end(),
                       [&](const Line& line) { return line.level == level && line.message == message; });
}
