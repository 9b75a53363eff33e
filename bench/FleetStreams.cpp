#include "FleetStreams.h"

#include <arv.h>

#include <thread>

#include "LibrarySession.h"
#include "ProcessStats.h"
#include "RawAravisStream.h"
#include "ViewerBiz3.h"
#include "sdk/aravis/AravisCamera.h"

namespace Bench {

namespace {

constexpr double kRawWarmUpSeconds = 0.4;

// Measures the process over the window that starts once every camera has warmed up.
void MeasureWindow(FleetWindow& fleet, double warmUpSeconds, double seconds, const WindowWait& wait)
{
    SleepSeconds(warmUpSeconds);
    double wallStart = WallSeconds();
    double cpuStart = ProcessCpuSeconds();
    if (wait)
        wait(seconds);
    else
        SleepSeconds(seconds);
    fleet.wallSeconds = WallSeconds() - wallStart;
    fleet.cpuSeconds = ProcessCpuSeconds() - cpuStart;
}

} // namespace

double FleetWindow::Sum(double (StreamWindow::*figure)() const) const
{
    double sum = 0;
    for (const auto& camera : cameras)
        sum += (camera.*figure)();
    return sum;
}

double FleetWindow::CpuMicrosecondsPerFrame() const
{
    double framesPerSecond = FramesPerSecond();
    return wallSeconds > 0 && framesPerSecond > 0 ? cpuSeconds / wallSeconds / framesPerSecond * 1e6 : 0;
}

FleetWindow StreamWithPlainAravis(const std::vector<std::string>& addresses, const FrameSettings& settings,
                                  double seconds, const WindowWait& wait)
{
    FleetWindow fleet;
    fleet.cameras.resize(addresses.size());
    std::vector<ArvCamera*> cameras;
    std::vector<std::unique_ptr<RawAravisStream>> streams;
    for (const auto& address : addresses) {
        GError* error = nullptr;
        ArvCamera* camera = arv_camera_new(address.c_str(), &error);
        g_clear_error(&error);
        if (camera == nullptr)
            break;
        cameras.push_back(camera);
        arv_camera_set_region(camera, 0, 0, settings.width, settings.height, nullptr);
        arv_camera_set_frame_rate(camera, settings.frameRate, nullptr);
        if (settings.packetSize > 0)
            arv_camera_gv_set_packet_size(camera, settings.packetSize, nullptr);
        streams.push_back(std::make_unique<RawAravisStream>(camera, ZYLGENICAM::AravisCamera::kBufferPoolSize));
    }
    if (streams.size() == addresses.size()) {
        // The streams warm up on their own threads; the process is measured once they all have.
        const double streamSeconds = seconds + kRawWarmUpSeconds;
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < streams.size(); ++i)
            threads.emplace_back([&, i] { fleet.cameras[i] = streams[i]->Run(streamSeconds); });
        MeasureWindow(fleet, 2 * kRawWarmUpSeconds, seconds, wait);
        for (auto& thread : threads)
            thread.join();
    }
    streams.clear();
    for (ArvCamera* camera : cameras)
        g_object_unref(camera);
    return fleet;
}

LibraryFleet::LibraryFleet(std::vector<std::string> ids, std::size_t framesPerSink)
    : m_ids(std::move(ids)), m_framesPerSink(framesPerSink)
{
}

LibraryFleet::~LibraryFleet()
{
    for (const auto& id : m_opened)
        ViewerBiz3::CloseCamera(id);
}

bool LibraryFleet::Open(const FrameSettings& settings)
{
    for (const auto& id : m_ids) {
        if (ViewerBiz3::OpenCamera(id) != 0)
            return false;
        m_opened.push_back(id);
        if (ViewerBiz3::SetCameraNodeValue(id, "Width", std::to_string(settings.width)) != 0
            || ViewerBiz3::SetCameraNodeValue(id, "Height", std::to_string(settings.height)) != 0
            || ViewerBiz3::SetCameraNodeValue(id, "AcquisitionFrameRate", std::to_string(settings.frameRate)) != 0)
            return false;
        if (settings.packetSize > 0
            && ViewerBiz3::SetCameraNodeValue(id, "GevSCPSPacketSize", std::to_string(settings.packetSize)) != 0)
            return false;
        m_sinks.push_back(std::make_unique<FrameSink>(id, m_framesPerSink));
    }
    return true;
}

FleetWindow LibraryFleet::Stream(double seconds, const WindowWait& wait)
{
    FleetWindow fleet;
    bool started = true;
    for (std::size_t i = 0; i < m_sinks.size(); ++i)
        started = LibrarySession::BeginStream(m_ids[i], *m_sinks[i]) && started;
    double warmUpEnd = WallSeconds() + LibrarySession::kWarmUpSeconds;
    if (started)
        MeasureWindow(fleet, LibrarySession::kWarmUpSeconds, seconds, wait);
    for (std::size_t i = 0; i < m_sinks.size(); ++i)
        LibrarySession::EndStream(m_ids[i], *m_sinks[i]);
    for (const auto& sink : m_sinks)
        fleet.cameras.push_back(LibrarySession::WindowOf(*sink, warmUpEnd));
    return fleet;
}

} // namespace Bench
