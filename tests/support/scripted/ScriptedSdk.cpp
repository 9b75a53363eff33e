#include "support/scripted/ScriptedSdk.h"

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "support/scripted/ScriptedCamera.h"
#include "support/scripted/ScriptedCameraInfo.h"

namespace Scripted {

namespace {

// Everything the SDK knows; Reset replaces it whole.
struct SdkState {
    std::vector<std::shared_ptr<ScriptedDevice>> devices;
    // Records and handles stay allocated until Reset so a use after Destroy is reported, not undefined.
    std::vector<std::unique_ptr<ScriptedCameraInfo>> records;
    std::vector<std::unique_ptr<ScriptedCamera>> cameras;
    std::list<std::string> clSerials;
    std::list<std::string> clProtocols;
    int initResult = ZYLGENICAM::SDK_OK;
    std::chrono::milliseconds discoveryDelay{0};
    SdkCounters counters;
};

std::mutex sdkMutex;
// Never destroyed: detached library threads may still reach the SDK while the process exits.
SdkState& sdkState = *new SdkState();

using Lock = std::lock_guard<std::mutex>;

std::vector<std::shared_ptr<ScriptedDevice>> Devices()
{
    Lock lock(sdkMutex);
    return sdkState.devices;
}

// Fresh records of the listed devices, in the order they were added.
std::list<ZYLGENICAM::ICameraInfo*> MakeRecords(DeviceRole role, uint64_t tlMask)
{
    std::list<ZYLGENICAM::ICameraInfo*> made;
    for (const auto& device : Devices()) {
        if (device->IsListed(role, tlMask)) {
            auto record = std::make_unique<ScriptedCameraInfo>(device, ScriptedCameraInfo::Owner::Caller);
            made.push_back(record.get());
            Lock lock(sdkMutex);
            sdkState.records.push_back(std::move(record));
        }
    }
    return made;
}

// info as a record this SDK made and nobody destroyed yet; null otherwise.
ScriptedCameraInfo* LiveRecord(ZYLGENICAM::ICameraInfo* info)
{
    Lock lock(sdkMutex);
    for (const auto& record : sdkState.records) {
        if (record.get() == info && !record->IsDestroyed()) {
            return record.get();
        }
    }
    return nullptr;
}

} // namespace

ScriptedSdk& ScriptedSdk::Instance()
{
    static ScriptedSdk instance;
    return instance;
}

void ScriptedSdk::Reset()
{
    SdkState old; // freed once the lock is released
    Lock lock(sdkMutex);
    std::swap(old, sdkState);
}

ScriptedDevice& ScriptedSdk::AddDevice(DeviceDescription description)
{
    auto device = std::make_shared<ScriptedDevice>(std::move(description));
    Lock lock(sdkMutex);
    sdkState.devices.push_back(device);
    return *device;
}

ScriptedDevice* ScriptedSdk::FindDevice(const std::string& serialNumber)
{
    for (const auto& device : Devices()) {
        if (device->SerialNumber() == serialNumber) {
            return device.get();
        }
    }
    return nullptr;
}

void ScriptedSdk::SetInitResult(int code)
{
    Lock lock(sdkMutex);
    sdkState.initResult = code;
}

void ScriptedSdk::SetCLSerials(std::list<std::string> serials)
{
    Lock lock(sdkMutex);
    sdkState.clSerials = std::move(serials);
}

void ScriptedSdk::SetCLProtocols(std::list<std::string> protocols)
{
    Lock lock(sdkMutex);
    sdkState.clProtocols = std::move(protocols);
}

void ScriptedSdk::SetDiscoveryDelay(std::chrono::milliseconds delay)
{
    Lock lock(sdkMutex);
    sdkState.discoveryDelay = delay;
}

SdkCounters ScriptedSdk::Counters() const
{
    Lock lock(sdkMutex);
    return sdkState.counters;
}

void ScriptedSdk::ReportMisuse(const std::string& what)
{
    {
        Lock lock(sdkMutex);
        ++sdkState.counters.misuses;
    }
    ADD_FAILURE() << "scripted SDK: " << what;
}

ScriptedDevice& OnlyDevice(DeviceDescription description)
{
    ScriptedSdk::Instance().Reset();
    return ScriptedSdk::Instance().AddDevice(std::move(description));
}

} // namespace Scripted

namespace ZYLGENICAM {

using namespace Scripted;

int Init()
{
    Lock lock(sdkMutex);
    ++sdkState.counters.inits;
    return sdkState.initResult;
}

int UnInit()
{
    Lock lock(sdkMutex);
    ++sdkState.counters.uninits;
    return SDK_OK;
}

std::list<ICameraInfo*> DiscoveryByTLType(uint64_t mask)
{
    std::chrono::milliseconds delay;
    {
        Lock lock(sdkMutex);
        ++sdkState.counters.discoveries;
        delay = sdkState.discoveryDelay;
    }
    std::this_thread::sleep_for(delay);
    return MakeRecords(DeviceRole::Camera, mask);
}

ICamera* CreateCamera(ICameraInfo* info)
{
    ScriptedCameraInfo* record = info != nullptr ? LiveRecord(info) : nullptr;
    if (info != nullptr && record == nullptr) {
        ScriptedSdk::Instance().ReportMisuse("CreateCamera with a record this SDK did not make or destroyed");
    }
    if (record == nullptr || record->Device()->CreateCameraFails()) {
        return nullptr;
    }
    auto camera = std::make_unique<ScriptedCamera>(record->Device());
    Lock lock(sdkMutex);
    sdkState.cameras.push_back(std::move(camera));
    return sdkState.cameras.back().get();
}

std::list<ICameraInfo*> DiscoveryCLCards()
{
    return MakeRecords(DeviceRole::FrameGrabberCard, 0);
}

std::list<ICameraInfo*> DiscoveryCLCameras()
{
    return MakeRecords(DeviceRole::Camera, TL_CAMERALINK);
}

std::list<std::string> GetCLSerials()
{
    Lock lock(sdkMutex);
    return sdkState.clSerials;
}

std::list<std::string> GetCLProtocols()
{
    Lock lock(sdkMutex);
    return sdkState.clProtocols;
}

int64_t SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway, bool persistent)
{
    ScriptedDevice* device = serialNumber != nullptr ? ScriptedSdk::Instance().FindDevice(serialNumber) : nullptr;
    if (device == nullptr) {
        return SDK_INVALID_ARGUMENT;
    }
    const auto text = [](const char* text) { return std::string(text != nullptr ? text : ""); };
    return device->SetCameraIP({text(ip), text(mask), text(gateway), persistent});
}

} // namespace ZYLGENICAM
