// The viewer's one image listener. It is registered before any grab starts and
// removed after every grab stopped, hears the frames of all cameras, hands
// each to the sinks of its camera (still on the acquisition thread, while the
// buffer is valid) and releases every frame it gets exactly once.
#pragma once

#include <QString>

#include <mutex>
#include <utility>
#include <vector>

#include <ViewerBiz3/ViewerBiz3.h>

class FrameSink {
public:
    // Acquisition thread. Copy what is needed now: the frame is released after.
    virtual void Consume(ZYLGENICAM::IImage& image, int imageMode) = 0;

protected:
    ~FrameSink() = default;
};

class FrameHub : public ViewerBiz3::IImageUpdate {
public:
    // After Detach returns, the sink is not called any more.
    void Attach(const QString& camera, FrameSink* sink);
    void Detach(FrameSink* sink);
    void Rename(const QString& oldId, const QString& newId);

    void OnImageUpdate(std::string cameraKey, void* image, int imageMode, int scaler) override;

private:
    std::mutex m_mutex;
    std::vector<std::pair<std::string, FrameSink*>> m_sinks;
};
