#include "RawAravisStream.h"

#include "ProcessStats.h"
#include "sdk/aravis/AravisDiscovery.h"

namespace Bench {

namespace {

constexpr double kWarmUpSeconds = 0.4;
constexpr guint64 kPopTimeoutUs = 300000;

} // namespace

ArvCamera* OpenRawGigeCamera(const std::string& address)
{
    ZYLGENICAM::GObjectPtr<ArvDevice> device = ZYLGENICAM::AravisDiscovery::OpenGigeDevice("127.0.0.1", address);
    if (!device)
        return nullptr;
    GError* error = nullptr;
    ArvCamera* camera = arv_camera_new_with_device(device.get(), &error);
    g_clear_error(&error);
    return camera;
}

RawAravisStream::RawAravisStream(ArvCamera* camera, unsigned bufferCount) : m_camera(camera)
{
    GError* error = nullptr;
    m_stream = arv_camera_create_stream(m_camera, nullptr, nullptr, &error);
    if (error != nullptr) {
        g_clear_error(&error);
        m_stream = nullptr;
        return;
    }
    // The same socket buffer the SDK asks for, so both sides receive GigE Vision alike.
    if (ARV_IS_GV_STREAM(m_stream))
        g_object_set(m_stream, "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_AUTO, nullptr);
    guint payload = arv_camera_get_payload(m_camera, nullptr);
    for (unsigned i = 0; i < bufferCount; ++i)
        arv_stream_push_buffer(m_stream, arv_buffer_new(payload, nullptr));
}

RawAravisStream::~RawAravisStream()
{
    if (m_stream != nullptr)
        g_object_unref(m_stream);
}

StreamWindow RawAravisStream::Run(double seconds, LatencySamples* ages)
{
    StreamWindow window;
    if (m_stream == nullptr)
        return window;
    arv_camera_start_acquisition(m_camera, nullptr);
    double warmUpEnd = WallSeconds() + kWarmUpSeconds;
    double end = warmUpEnd + seconds;
    double windowStart = 0;
    double windowCpuStart = 0;
    double lastFrameAt = 0;
    guint64 previousId = 0;
    bool inWindow = false;
    for (double now = WallSeconds(); now < end; now = WallSeconds()) {
        ArvBuffer* buffer = arv_stream_timeout_pop_buffer(m_stream, kPopTimeoutUs);
        if (buffer == nullptr)
            continue;
        if (arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS) {
            int64_t poppedAt = RealTimeNs();
            guint64 id = arv_buffer_get_frame_id(buffer);
            if (inWindow) {
                ++window.framesReceived;
                window.framesProduced += static_cast<double>(FrameIdStep(previousId, id));
                lastFrameAt = WallSeconds();
                if (ages != nullptr)
                    ages->Add(poppedAt - static_cast<int64_t>(arv_buffer_get_timestamp(buffer)));
            } else if (WallSeconds() >= warmUpEnd) {
                inWindow = true;
                windowStart = WallSeconds();
                lastFrameAt = windowStart;
                windowCpuStart = ProcessCpuSeconds();
            }
            previousId = id;
        }
        arv_stream_push_buffer(m_stream, buffer);
    }
    window.wallSeconds = lastFrameAt - windowStart;
    window.cpuSeconds = ProcessCpuSeconds() - windowCpuStart;
    arv_camera_stop_acquisition(m_camera, nullptr);
    return window;
}

} // namespace Bench
