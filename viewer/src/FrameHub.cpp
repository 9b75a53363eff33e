#include "FrameHub.h"

#include <algorithm>

void FrameHub::Attach(const QString& camera, FrameSink* sink)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sinks.emplace_back(camera.toStdString(), sink);
}

void FrameHub::Detach(FrameSink* sink)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_sinks.erase(
        std::remove_if(m_sinks.begin(), m_sinks.end(), [&](const auto& entry) { return entry.second == sink; }),
        m_sinks.end());
}

void FrameHub::Rename(const QString& oldId, const QString& newId)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& entry : m_sinks) {
        if (entry.first == oldId.toStdString()) {
            entry.first = newId.toStdString();
        }
    }
}

void FrameHub::OnImageUpdate(std::string cameraKey, void* image, int imageMode, int /*scaler*/)
{
    if (image == nullptr) {
        return; // the end of a grab: nothing to release
    }
    auto* frame = static_cast<ZYLGENICAM::IImage*>(image);
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const auto& entry : m_sinks) {
            if (entry.first == cameraKey) {
                entry.second->Consume(*frame, imageMode);
            }
        }
    }
    frame->Release();
}
