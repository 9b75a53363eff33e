#include "sdk/aravis/AravisCamera.h"

#include <chrono>

#include "genapi/NodeMapFactory.h"
#include "sdk/aravis/AravisDiscovery.h"
#include "sdk/aravis/AravisImage.h"
#include "sdk/aravis/GigeTransportModule.h"
#include "sdk/aravis/GvcpBootstrapReader.h"
#include "sdk/aravis/LostDeviceTeardown.h"
#include "sdk/aravis/OpenUsbDevices.h"
#include "genapi/GenicamParsing.h"

namespace ZYLGENICAM {

namespace {

// What a lost device's teardown is known by until it is let go: GigE Vision devices are opened by
// address, not by an Aravis id, so their MAC address names them.
const std::string& TeardownKey(const AravisDeviceRecord& record)
{
    return record.tlType == TL_GIGE ? record.macAddress : record.aravisDeviceId;
}

int64_t SteadyNowMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void OnControlLost(ArvDevice*, gpointer flag)
{
    static_cast<std::atomic<bool>*>(flag)->store(true);
}

void DeleteControlLostFlag(gpointer flag)
{
    delete static_cast<std::shared_ptr<std::atomic<bool>>*>(flag);
}

// Longer than Aravis takes to give up on a device that stays silent.
constexpr auto kLetGoTimeout = std::chrono::seconds(10);

// Register 0 exists on every transport (GigE Vision bootstrap version, USB3 Vision ABRM version).
constexpr guint64 kProbeRegister = 0;

std::string GigeDeviceAddress(ArvDevice* device)
{
    GSocketAddress* socketAddress = arv_gv_device_get_device_address(ARV_GV_DEVICE(device)); // not ours
    if (!G_IS_INET_SOCKET_ADDRESS(socketAddress))
        return {};
    gchar* text = g_inet_address_to_string(g_inet_socket_address_get_address(G_INET_SOCKET_ADDRESS(socketAddress)));
    std::string result = text != nullptr ? text : "";
    g_free(text);
    return result;
}

} // namespace

AravisCamera::AravisCamera(const AravisDeviceRecord& record)
    : m_info(new AravisCameraInfo(record)), m_controlLost(std::make_shared<std::atomic<bool>>(false))
{
}

AravisCamera::~AravisCamera()
{
    delete m_info;
}

void AravisCamera::Destroy()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_open.load())
            CloseLocked();
    }
    delete this;
}

GObjectPtr<ArvDevice> AravisCamera::OpenDevice(int& result)
{
    AravisDeviceRecord& record = m_info->m_record;
    result = SDK_ERROR;
    if (record.tlType == TL_SIMULATED) {
        if (!record.simulated)
            return nullptr;
        if (!record.simulated->TryOpen()) {
            result = SDK_ACCESS_DENIED;
            record.accessStatus = ACCESS_BUSY;
            return nullptr;
        }
        result = SDK_OK;
        return RefObject(record.simulated->Device());
    }
    if (!LostDeviceTeardown::Instance().WaitUntilLetGo(TeardownKey(record), kLetGoTimeout))
        return nullptr;
    GObjectPtr<ArvDevice> device;
    if (record.tlType == TL_GIGE) {
        device = AravisDiscovery::OpenGigeDevice(record.hostInterfaceAddress, record.ipAddress);
    } else {
        std::lock_guard<std::mutex> interfaceLock(AravisDiscovery::InterfaceMutex());
        const auto parsing = GenApi_3_4::LockGenicamParsing();
        GError* error = nullptr;
        device.reset(arv_interface_open_device(arv_uv_interface_get_instance(), record.aravisDeviceId.c_str(), &error));
        g_clear_error(&error);
    }
    if (!device)
        return nullptr;
    // Aravis opens a GigE Vision device that another host controls without control; every write
    // would then time out, so such a device counts as busy.
    if (ARV_IS_GV_DEVICE(device.get()) && !arv_gv_device_is_controller(ARV_GV_DEVICE(device.get()))) {
        result = SDK_ACCESS_DENIED;
        record.accessStatus = ACCESS_BUSY;
        return nullptr;
    }
    result = SDK_OK;
    return device;
}

int AravisCamera::Open(int)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_open.load())
        return SDK_ERROR;
    int result = SDK_ERROR;
    GObjectPtr<ArvDevice> device = OpenDevice(result);
    if (!device)
        return result;
    try {
        m_nodeMap = GenApi_3_4::CreateNodeMapForDevice(device.get());
    } catch (const GenICam_3_4::GenericException&) {
        if (m_info->m_record.simulated)
            m_info->m_record.simulated->CloseAccess();
        return SDK_ERROR;
    }
    size_t xmlSize = 0;
    const char* xml = arv_device_get_genicam_xml(device.get(), &xmlSize);
    m_featureModule =
        std::make_unique<AravisModule>(m_nodeMap.get(), xml != nullptr ? std::string(xml, xmlSize) : std::string());
    if (ARV_IS_GV_DEVICE(device.get()))
        m_transportNodeMap = GigeTransportModule::CreateNodeMap(device.get());
    if (m_transportNodeMap)
        m_transportModule = std::make_unique<AravisModule>(m_transportNodeMap.get(), GigeTransportModule::Xml());
    m_streamModule = std::make_unique<StreamModule>(device.get(), kBufferPoolSize);
    m_controlLost->store(false);
    // The device keeps the flag alive until it is finalized, which ends its heartbeat thread, so a
    // signal still in flight after disconnecting never touches freed memory.
    g_object_set_data_full(G_OBJECT(device.get()), "viewerbiz3-control-lost",
                           new std::shared_ptr<std::atomic<bool>>(m_controlLost), DeleteControlLostFlag);
    m_controlLostHandler =
        g_signal_connect(device.get(), "control-lost", G_CALLBACK(OnControlLost), m_controlLost.get());
    if (m_info->m_record.tlType == TL_USB)
        OpenUsbDevices::Instance().Add(m_info->m_record.aravisDeviceId, device.get());
    m_device = std::move(device);
    m_lost.store(false);
    MarkAlive();
    m_open.store(true);
    return SDK_OK;
}

int AravisCamera::Close()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_open.load())
        return SDK_NOT_OPEN;
    return CloseLocked();
}

int AravisCamera::CloseLocked()
{
    MarkLostUnlessAnsweringLocked();
    StopStreamLocked();
    m_open.store(false);
    g_signal_handler_disconnect(m_device.get(), m_controlLostHandler);
    m_controlLostHandler = 0;
    m_featureModule.reset();
    m_transportModule.reset();
    m_transportNodeMap.reset();
    m_streamModule.reset();
    m_nodeMap.reset(); // before the device: they read through it
    if (m_info->m_record.tlType == TL_USB)
        OpenUsbDevices::Instance().Remove(m_info->m_record.aravisDeviceId);
    if (IsLost())
        LostDeviceTeardown::Instance().Add(std::shared_ptr<ArvDevice>(m_device.release(), GObjectUnref()),
                                           TeardownKey(m_info->m_record));
    m_device.reset();
    if (m_info->m_record.simulated)
        m_info->m_record.simulated->CloseAccess();
    return SDK_OK;
}

IModule* AravisCamera::GetModule0()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_transportModule.get();
}

IModule* AravisCamera::GetModule4()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_streamModule ? m_streamModule->Module() : nullptr;
}

IModule* AravisCamera::GetModule3()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_featureModule.get();
}

bool AravisCamera::ExecuteCommand(const char* name)
{
    try {
        GenApi_3_4::CCommandPtr command = m_nodeMap->GetNode(name);
        if (!command)
            return false;
        command->Execute();
        return true;
    } catch (const GenICam_3_4::GenericException&) {
        return false;
    }
}

// The SDK streams continuously; the camera layer counts frames against its limit.
int AravisCamera::StartGrabbing(int, uint64_t)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_open.load())
        return SDK_NOT_OPEN;
    if (m_stream)
        return SDK_ERROR;
    if (IsLost())
        return SDK_LOST;
    int64_t payload = 0;
    try {
        GenApi_3_4::CIntegerPtr payloadSize = m_nodeMap->GetNode("PayloadSize");
        if (payloadSize)
            payload = payloadSize->GetValue();
    } catch (const GenICam_3_4::GenericException&) {
        payload = 0;
    }
    if (payload <= 0)
        return SDK_ERROR;
    GError* error = nullptr;
    ArvStream* created = arv_device_create_stream(m_device.get(), nullptr, nullptr, &error);
    g_clear_error(&error);
    if (created == nullptr)
        return SDK_ERROR;
    // Without root the default socket buffer loses almost every frame.
    if (ARV_IS_GV_STREAM(created))
        g_object_set(created, "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_AUTO, "packet-resend",
                     m_streamModule->PacketResend() ? ARV_GV_STREAM_PACKET_RESEND_ALWAYS
                                                    : ARV_GV_STREAM_PACKET_RESEND_NEVER,
                     nullptr);
    auto stream = AcquisitionStream::Create(created, std::size_t(payload), m_streamModule->BufferCount());
    if (!ExecuteCommand("AcquisitionStart"))
        return SDK_ERROR;
    m_streamModule->Attach(stream);
    m_stream = std::move(stream);
    m_grabbing.store(true);
    MarkAlive();
    return SDK_OK;
}

int AravisCamera::StopGrabbing()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_stream)
        return SDK_ERROR;
    StopStreamLocked();
    return SDK_OK;
}

// Images still out keep the stream alive; they are pushed back to it on release.
void AravisCamera::StopStreamLocked()
{
    if (!m_stream)
        return;
    MarkLostUnlessAnsweringLocked();
    m_streamModule->Detach();
    if (IsLost()) {
        m_stream->MarkDeviceLost(TeardownKey(m_info->m_record));
    } else {
        ExecuteCommand("AcquisitionStop");
    }
    m_stream.reset();
    m_grabbing.store(false);
}

int AravisCamera::GetImage(IImage*& image, uint64_t timeoutMs)
{
    image = nullptr;
    std::shared_ptr<AcquisitionStream> stream;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_open.load())
            return SDK_NOT_OPEN;
        stream = m_stream;
    }
    if (!stream)
        return SDK_ERROR;
    if (IsLost())
        return SDK_LOST;
    ArvBuffer* buffer = stream->Pop(timeoutMs);
    if (buffer == nullptr)
        return SDK_TIMEOUT;
    uint64_t frameId = stream->ContinuousFrameId(arv_buffer_get_frame_id(buffer));
    auto* frame = new AravisImage(stream, buffer, frameId);
    image = frame;
    if (!frame->IsValid())
        return SDK_ERROR;
    MarkAlive();
    return SDK_OK;
}

bool AravisCamera::IsLost() const
{
    return m_lost.load() || m_controlLost->load();
}

void AravisCamera::MarkAlive()
{
    m_lastAliveMs.store(SteadyNowMs());
}

// A GigE Vision register read through Aravis queues behind its heartbeat, whose transaction to a
// dead device retries for seconds; our own socket has a deadline of its own. Holding no reference
// meanwhile, a GigE Vision probe never ends up running the device's teardown.
AravisCamera::ProbeTarget AravisCamera::ProbeTargetLocked() const
{
    ProbeTarget target;
    if (ARV_IS_GV_DEVICE(m_device.get()))
        target.gigeAddress = GigeDeviceAddress(m_device.get());
    else
        target.device = RefObject(m_device.get());
    return target;
}

bool AravisCamera::Answers(const ProbeTarget& target)
{
    if (!target.device)
        return GvcpBootstrapReader::Answers(target.gigeAddress);
    guint32 value = 0;
    GError* error = nullptr;
    bool answered = arv_device_read_register(target.device.get(), kProbeRegister, &value, &error);
    g_clear_error(&error);
    return answered;
}

bool AravisCamera::ProbeDevice()
{
    ProbeTarget target;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_device)
            return true; // closed meanwhile: nothing to probe
        target = ProbeTargetLocked();
    }
    return Answers(target);
}

// Stopping and closing talk to the device on the caller's thread. One that died since the watchdog
// last looked would hold the caller for as long as Aravis retries, so it is asked first (a single
// exchange with a live device) and, without an answer, let go like a lost one.
void AravisCamera::MarkLostUnlessAnsweringLocked()
{
    if (!IsLost() && !Answers(ProbeTargetLocked()))
        m_lost.store(true);
}

// Aravis's control-lost signal alone comes late (its heartbeat gives up after several seconds),
// so an open device that has sent no frame for a while is asked directly, at most once per call;
// the read gives up only after several attempts, so a busy but healthy camera is not dropped.
bool AravisCamera::IsConnected()
{
    if (m_lost.load())
        return false;
    if (m_controlLost->load()) {
        m_lost.store(true);
        return false;
    }
    if (!m_open.load())
        return true;
    if (SteadyNowMs() - m_lastAliveMs.load() < kAliveByFramesMs)
        return true;
    if (!ProbeDevice()) {
        m_lost.store(true);
        return false;
    }
    MarkAlive();
    return true;
}

} // namespace ZYLGENICAM
