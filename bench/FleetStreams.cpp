#include "FleetStreams.h"

#include <arv.h>

#include <algorithm>
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

double FleetWindow::ReceivedShare() const
{
    double received = 0;
    double sent = 0;
    for (const auto& camera : cameras) {
        received += static_cast<double>(camera.framesReceived);
        sent += camera.framesProduced;
    }
    return sent > 0 ? std::min(1.0, received / sent) : 0;
}

double FleetWindow::CpuMicrosecondsPerFrame() const
{
    double framesPerSecond = FramesPerSecond();
    return wallSeconds > 0 && framesPerSecond > 0 ? cpuSeconds / wallSeconds / framesPerSecond * 1e6 : 0;
}

FleetWindow StreamWithPlainAravis(const std::vector<std::string>& addresses, const FrameSettings& settings,
                                  double seconds)
{
    FleetWindow fleet;
    fleet.cameras.resize(addresses.size());
    std::vector<ArvCamera*> cameras;
    std::vector<std::unique_ptr<RawAravisStream>> streams;
    for (const auto& address : addresses) {
        ArvCamera* camera = OpenRawGigeCamera(address);
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
        MeasureWindow(fleet, 2 * kRawWarmUpSeconds, seconds, {});
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

bool LibraryFleet::Open(const FrameSettings& settings, std::string& why)
{
    for (const auto& id : m_ids) {
        int opened = ViewerBiz3::OpenCamera(id);
        if (opened != 0) {
            why = "OpenCamera(" + id + ") returned " + std::to_string(opened);
            return false;
        }
        m_opened.push_back(id);
        std::vector<std::pair<const char*, int>> nodes{
            {"Width", settings.width}, {"Height", settings.height}, {"AcquisitionFrameRate", settings.frameRate}};
        if (settings.packetSize > 0)
            nodes.emplace_back("GevSCPSPacketSize", settings.packetSize);
        for (const auto& [node, value] : nodes) {
            int set = ViewerBiz3::SetCameraNodeValue(id, node, std::to_string(value));
            if (set != 0) {
                why = std::string("setting ") + node + " of " + id + " returned " + std::to_string(set);
                return false;
            }
        }
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
