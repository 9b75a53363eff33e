// The host side of a grab: receives the frames and the statistics events of
// the library's acquisition threads, keeps a copy of the newest frame of one
// camera and wakes the status display.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

#include <ViewerBiz3/ViewerBiz3.h>

#include "Frame.h"

class GrabMonitor : public ViewerBiz3::IImageUpdate, public ViewerBiz3::IAcqStatisticUpdate {
public:
    explicit GrabMonitor(std::string cameraId);

    // Runs on a camera's delivery thread: copies the frame if it is ours and
    // complete, then releases it (every delivered frame, ours or not).
    void OnImageUpdate(std::string cameraKey, void* image, int extra1, int extra2) override;
    // Runs on a camera's grab thread; only wakes the waiting host thread, so
    // nothing slow happens on the acquisition path.
    void OnAcqStatisticUpdate(std::string cameraName, bool fromSetInfo) override;

    // Waits until a statistics event arrives or the timeout passes.
    void WaitForStatistics(std::chrono::milliseconds timeout);
    std::uint64_t DeliveredFrames();
    // The newest complete frame of the camera; false if none arrived.
    bool CopyLastFrame(Frame& frame);

private:
    const std::string m_cameraId;
    std::mutex m_mutex;
    std::condition_variable m_statisticsChanged;
    std::uint64_t m_statisticsEvents = 0;
    std::uint64_t m_statisticsSeen = 0;
    std::uint64_t m_deliveredFrames = 0;
    bool m_hasFrame = false;
    Frame m_lastFrame;
};
