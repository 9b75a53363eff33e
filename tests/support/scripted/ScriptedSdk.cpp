#include "support/scripted/ScriptedSdk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <utility>

#include "support/scripted/ScriptedCamera.h"
#include "support/scripted/ScriptedCameraInfo.h"

namespace Scripted {

namespace {

using DeviceFilter = bool (*)(ScriptedDevice& device, uint64_t mask);

bool IsCameraInMask(ScriptedDevice& device, uint64_t mask)
{
    return device.Role() == DeviceRole::Camera && (mask & static_cast<uint64_t>(device.Identity().tlType)) != 0;
}

bool IsCard(ScriptedDevice& device, uint64_t /*mask*/)
{
    return device.Role() == DeviceRole::FrameGrabberCard;
}

std::string TextOrEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

} // namespace

ScriptedSdk& ScriptedSdk::Instance()
{
    // Never destroyed: detached library threads may still reach the SDK while the process exits.
    static ScriptedSdk* instance = new ScriptedSdk();
    return *instance;
}

void ScriptedSdk::Reset()
{
    std::vector<std::shared_ptr<ScriptedDevice>> devices;
    std::vector<std::unique_ptr<ScriptedCameraInfo>> records;
    std::vector<std::unique_ptr<ScriptedCamera>> cameras;
    std::lock_guard<std::mutex> lock(m_mutex);
    devices.swap(m_devices);
    records.swap(m_records);
    cameras.swap(m_cameras);
    m_clSerials.clear();
    m_clProtocols.clear();
    m_initResult = ZYLGENICAM::SDK_OK;
    m_discoveryDelay = std::chrono::milliseconds(0);
    m_counters = SdkCounters();
}

ScriptedDevice& ScriptedSdk::AddDevice(DeviceDescription description)
{
    auto device = std::make_shared<ScriptedDevice>(std::move(description));
    std::lock_guard<std::mutex> lock(m_mutex);
    m_devices.push_back(device);
    return *device;
}

ScriptedDevice* ScriptedSdk::FindDevice(const std::string& serialNumber)
{
    for (const auto& device : DevicesSnapshot()) {
        if (device->SerialNumber() == serialNumber) {
            return device.get();
        }
    }
    return nullptr;
}

void ScriptedSdk::SetInitResult(int code)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_initResult = code;
}

void ScriptedSdk::SetCLSerials(std::list<std::string> serials)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_clSerials = std::move(serials);
}

void ScriptedSdk::SetCLProtocols(std::list<std::string> protocols)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_clProtocols = std::move(protocols);
}

void ScriptedSdk::SetDiscoveryDelay(std::chrono::milliseconds delay)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_discoveryDelay = delay;
}

SdkCounters ScriptedSdk::Counters() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_counters;
}

int ScriptedSdk::Init()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_counters.inits;
    return m_initResult;
}

int ScriptedSdk::UnInit()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_counters.uninits;
    return ZYLGENICAM::SDK_OK;
}

std::list<ZYLGENICAM::ICameraInfo*> ScriptedSdk::DiscoveryByTLType(uint64_t mask)
{
    std::chrono::milliseconds delay;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_counters.discoveries;
        delay = m_discoveryDelay;
    }
    std::this_thread::sleep_for(delay);
    return MakeRecords(IsCameraInMask, mask);
}

ZYLGENICAM::ICamera* ScriptedSdk::CreateCamera(ZYLGENICAM::ICameraInfo* info)
{
    if (info == nullptr) {
        return nullptr;
    }
    ScriptedCameraInfo* record = KnownRecord(info);
    if (record == nullptr) {
        ReportMisuse("CreateCamera with a record this SDK did not make");
        return nullptr;
    }
    if (record->IsDestroyed()) {
        ReportMisuse("CreateCamera with a destroyed record of " + record->Device()->SerialNumber());
        return nullptr;
    }
    if (record->Device()->CreateCameraFails()) {
        return nullptr;
    }
    auto camera = std::make_unique<ScriptedCamera>(record->Device());
    ScriptedCamera* created = camera.get();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_cameras.push_back(std::move(camera));
    return created;
}

std::list<ZYLGENICAM::ICameraInfo*> ScriptedSdk::DiscoveryCLCards()
{
    return MakeRecords(IsCard, 0);
}

std::list<ZYLGENICAM::ICameraInfo*> ScriptedSdk::DiscoveryCLCameras()
{
    return MakeRecords(IsCameraInMask, ZYLGENICAM::TL_CAMERALINK);
}

std::list<std::string> ScriptedSdk::GetCLSerials() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_clSerials;
}

std::list<std::string> ScriptedSdk::GetCLProtocols() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_clProtocols;
}

int64_t ScriptedSdk::SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway,
                                 bool persistent)
{
    ScriptedDevice* device = serialNumber != nullptr ? FindDevice(serialNumber) : nullptr;
    if (device == nullptr) {
        return ZYLGENICAM::SDK_INVALID_ARGUMENT;
    }
    SetCameraIPCall call;
    call.ip = TextOrEmpty(ip);
    call.mask = TextOrEmpty(mask);
    call.gateway = TextOrEmpty(gateway);
    call.persistent = persistent;
    return device->SetCameraIP(call);
}

void ScriptedSdk::ReportMisuse(const std::string& what)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        ++m_counters.misuses;
    }
    ADD_FAILURE() << "scripted SDK: " << what;
}

std::vector<std::shared_ptr<ScriptedDevice>> ScriptedSdk::DevicesSnapshot() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_devices;
}

std::list<ZYLGENICAM::ICameraInfo*> ScriptedSdk::MakeRecords(DeviceFilter filter, uint64_t mask)
{
    std::list<ZYLGENICAM::ICameraInfo*> records;
    std::vector<std::unique_ptr<ScriptedCameraInfo>> made;
    for (const auto& device : DevicesSnapshot()) {
        if (device->IsPresent() && filter(*device, mask)) {
            made.push_back(std::make_unique<ScriptedCameraInfo>(device, ScriptedCameraInfo::Owner::Caller));
            records.push_back(made.back().get());
        }
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    for (auto& record : made) {
        m_records.push_back(std::move(record));
    }
    return records;
}

ScriptedCameraInfo* ScriptedSdk::KnownRecord(ZYLGENICAM::ICameraInfo* info) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found =
        std::find_if(m_records.begin(), m_records.end(),
                     [info](const std::unique_ptr<ScriptedCameraInfo>& record) { return record.get() == info; });
    return found != m_records.end() ? found->get() : nullptr;
}

ScriptedDevice& OnlyDevice(DeviceDescription description)
{
    ScriptedSdk::Instance().Reset();
    return ScriptedSdk::Instance().AddDevice(std::move(description));
}

} // namespace Scripted

namespace ZYLGENICAM {

int Init()
{
    return Scripted::ScriptedSdk::Instance().Init();
}

int UnInit()
{
    return Scripted::ScriptedSdk::Instance().UnInit();
}

std::list<ICameraInfo*> DiscoveryByTLType(uint64_t mask)
{
    return Scripted::ScriptedSdk::Instance().DiscoveryByTLType(mask);
}

ICamera* CreateCamera(ICameraInfo* info)
{
    return Scripted::ScriptedSdk::Instance().CreateCamera(info);
}

std::list<ICameraInfo*> DiscoveryCLCards()
{
    return Scripted::ScriptedSdk::Instance().DiscoveryCLCards();
}

std::list<ICameraInfo*> DiscoveryCLCameras()
{
    return Scripted::ScriptedSdk::Instance().DiscoveryCLCameras();
}

std::list<std::string> GetCLSerials()
{
    return Scripted::ScriptedSdk::Instance().GetCLSerials();
}

std::list<std::string> GetCLProtocols()
{
    return Scripted::ScriptedSdk::Instance().GetCLProtocols();
}

int64_t SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway, bool persistent)
{
    return Scripted::ScriptedSdk::Instance().SetCameraIP(serialNumber, ip, mask, gateway, persistent);
}

} // namespace ZYLGENICAM
