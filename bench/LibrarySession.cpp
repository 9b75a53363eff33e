#include "LibrarySession.h"

#include <algorithm>
#include <cstdio>
#include <thread>

#include "support/common/PrivateNetworkNamespace.h"
#include "ProcessStats.h"
#include "ViewerBiz3.h"

namespace Bench {

namespace {

constexpr unsigned long long kGigEBit = 1;

// Camera frame rate from the ids of the frames that reached the host between two instants.
double CameraFramesBetween(const std::vector<DeliveredFrame>& frames, double from, double to)
{
    const DeliveredFrame* first = nullptr;
    const DeliveredFrame* last = nullptr;
    double ids = 0;
    for (const auto& frame : frames) {
        if (frame.wallSeconds < from || frame.wallSeconds > to)
            continue;
        if (first == nullptr)
            first = &frame;
        else
            ids += static_cast<double>(FrameIdStep(last->frameId, frame.frameId));
        last = &frame;
    }
    if (first == nullptr || last == first || last->wallSeconds <= first->wallSeconds)
        return 0;
    return ids / (last->wallSeconds - first->wallSeconds) * (to - from);
}

std::string SerialOf(const std::string& cameraId)
{
    auto open = cameraId.rfind('(');
    return open == std::string::npos ? "" : cameraId.substr(open + 1, cameraId.size() - open - 2);
}

} // namespace

void SleepSeconds(double seconds)
{
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

LibrarySession& LibrarySession::Instance()
{
    static LibrarySession session;
    return session;
}

LibrarySession::LibrarySession()
{
    if (ViewerBiz3::Init() == 0)
        std::fprintf(stderr, "ViewerBiz3::Init could not create the device manager\n");
    ViewerBiz3::RegisterDeviceListUpdateListener(&m_deviceList);
}

LibrarySession::~LibrarySession()
{
    ViewerBiz3::UnInit();
}

bool LibrarySession::Discover(unsigned long long mask,
                              const std::function<bool(const std::vector<std::string>&)>& condition,
                              std::chrono::milliseconds timeout)
{
    if ((mask & kGigEBit) != 0 && !InPrivateNetworkNamespace())
        return false;
    m_mask = mask;
    ViewerBiz3::SetTLTypeList(mask);
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        uint64_t passes = m_deviceList.Passes();
        ViewerBiz3::RefreshCameraList(static_cast<int>(mask));
        if (m_deviceList.WaitForPassAfter(passes, timeout) &&
            m_deviceList.WaitForList(condition, std::chrono::milliseconds(0)))
            return true;
    }
    return false;
}

LibrarySession::PassTime LibrarySession::TimedPass()
{
    PassTime time;
    uint64_t passes = m_deviceList.Passes();
    double cpuStart = ProcessCpuSeconds();
    double start = WallSeconds();
    ViewerBiz3::RefreshCameraList(static_cast<int>(m_mask));
    if (!m_deviceList.WaitForPassAfter(passes, std::chrono::seconds(60)))
        return time;
    time.wallSeconds = WallSeconds() - start;
    time.cpuSeconds = ProcessCpuSeconds() - cpuStart;
    return time;
}

std::vector<std::string> LibrarySession::DiscoverGigeBySerial(const std::vector<std::string>& serials)
{
    std::vector<std::string> ids(serials.size());
    auto listed = [&](const std::vector<std::string>& cameras) {
        for (const auto& id : cameras) {
            auto found = std::find(serials.begin(), serials.end(), SerialOf(id));
            if (found != serials.end())
                ids[static_cast<std::size_t>(found - serials.begin())] = id;
        }
        return std::none_of(ids.begin(), ids.end(), [](const std::string& id) { return id.empty(); });
    };
    if (!Discover(kGigEBit, listed))
        return {};
    return ids;
}

StreamWindow LibrarySession::Stream(const std::string& cameraId, FrameSink& sink, double seconds)
{
    double warmUpEnd = WallSeconds() + kWarmUpSeconds;
    if (BeginStream(cameraId, sink))
        SleepSeconds(kWarmUpSeconds + seconds);
    EndStream(cameraId, sink);
    return WindowOf(sink, warmUpEnd);
}

bool LibrarySession::BeginStream(const std::string& cameraId, FrameSink& sink)
{
    sink.Clear();
    sink.SetReadFrameCount(true);
    ViewerBiz3::RegisterImageUpdateListener(cameraId, &sink);
    ViewerBiz3::RegisterAcqStatisticUpdateListener(&sink);
    return ViewerBiz3::StartGrab(cameraId) == 0;
}

void LibrarySession::EndStream(const std::string& cameraId, FrameSink& sink)
{
    ViewerBiz3::StopGrab(cameraId);
    ViewerBiz3::UnRegisterAcqStatisticUpdateListener(&sink);
    ViewerBiz3::UnRegisterImageUpdateListener(cameraId, &sink);
    sink.SetReadFrameCount(false);
}

StreamWindow LibrarySession::WindowOf(const FrameSink& sink, double warmUpEnd)
{
    StreamWindow window;
    const StatisticsPublication* first = nullptr;
    const StatisticsPublication* last = nullptr;
    auto publications = sink.StatisticsPublications();
    for (const auto& publication : publications) {
        if (publication.wallSeconds < warmUpEnd)
            continue;
        if (first == nullptr)
            first = &publication;
        last = &publication;
    }
    if (first == nullptr || last == first)
        return window;
    window.framesReceived = last->frameCount - first->frameCount;
    window.wallSeconds = last->wallSeconds - first->wallSeconds;
    window.cpuSeconds = last->processCpuSeconds - first->processCpuSeconds;
    auto frames = sink.Frames();
    window.framesProduced = CameraFramesBetween(frames, first->wallSeconds, last->wallSeconds);
    window.hostDeliveries = static_cast<uint64_t>(std::count_if(frames.begin(), frames.end(), [&](const auto& frame) {
        return frame.wallSeconds >= first->wallSeconds && frame.wallSeconds <= last->wallSeconds;
    }));
    return window;
}

} // namespace Bench
