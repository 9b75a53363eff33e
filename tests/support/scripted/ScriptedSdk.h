// The scripted camera SDK for tests: the ZYLGENICAM functions answer from devices a test
// describes here, and every device counts what the library did with it.
//
//   auto& cam = Scripted::ScriptedSdk::Instance().AddDevice(Scripted::AreaCamera("A1", "Line3"));
//   cam.SetFrameScript(Scripted::FrameScript::Empty().AddFrames(1, 5).Then(Scripted::WhenExhausted::KeepTimingOut));
//   ... drive the library ...
//   EXPECT_TRUE(cam.WaitUntil([](const auto& c) { return c.imagesReleased == 5; }));
//
// Tests share a process, so each starts from Reset() (or OnlyDevice), which is only safe
// once the library holds no handle, record or image any more.
#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "support/scripted/ScriptedDescriptions.h"
#include "support/scripted/ScriptedDevice.h"
#include "support/scripted/ScriptedTypes.h"

namespace Scripted {

class ScriptedCamera;
class ScriptedCameraInfo;

// Calls the library made on the SDK as a whole.
struct SdkCounters {
    uint64_t inits = 0;
    uint64_t uninits = 0;
    uint64_t discoveries = 0; // DiscoveryByTLType calls
    uint64_t misuses = 0;     // calls on destroyed handles or records (also test failures)
};

class ScriptedSdk {
public:
    static ScriptedSdk& Instance();

    // Forgets every device, record, handle and list.
    void Reset();

    // The device lives until Reset; discovery lists devices in the order they were added.
    ScriptedDevice& AddDevice(DeviceDescription description);
    ScriptedDevice* FindDevice(const std::string& serialNumber);

    void SetInitResult(int code);
    void SetCLSerials(std::list<std::string> serials);
    void SetCLProtocols(std::list<std::string> protocols);
    // Every DiscoveryByTLType call takes at least this long (a slow network search).
    void SetDiscoveryDelay(std::chrono::milliseconds delay);
    SdkCounters Counters() const;

    // The ZYLGENICAM functions, implemented on the registry.
    int Init();
    int UnInit();
    std::list<ZYLGENICAM::ICameraInfo*> DiscoveryByTLType(uint64_t mask);
    ZYLGENICAM::ICamera* CreateCamera(ZYLGENICAM::ICameraInfo* info);
    std::list<ZYLGENICAM::ICameraInfo*> DiscoveryCLCards();
    std::list<ZYLGENICAM::ICameraInfo*> DiscoveryCLCameras();
    std::list<std::string> GetCLSerials() const;
    std::list<std::string> GetCLProtocols() const;
    int64_t SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway,
                        bool persistent);

    // Called by records and handles when the library uses one after destroying it.
    void ReportMisuse(const std::string& what);

private:
    ScriptedSdk() = default;
    std::vector<std::shared_ptr<ScriptedDevice>> DevicesSnapshot() const;
    // Fresh records of the present devices the filter accepts, in the order they were added.
    std::list<ZYLGENICAM::ICameraInfo*> MakeRecords(bool (*filter)(ScriptedDevice& device, uint64_t mask),
                                                    uint64_t mask);
    ScriptedCameraInfo* KnownRecord(ZYLGENICAM::ICameraInfo* info) const;

    mutable std::mutex m_mutex;
    std::vector<std::shared_ptr<ScriptedDevice>> m_devices;
    // Records and handles stay allocated until Reset so a use after Destroy is reported, not undefined.
    std::vector<std::unique_ptr<ScriptedCameraInfo>> m_records;
    std::vector<std::unique_ptr<ScriptedCamera>> m_cameras;
    std::list<std::string> m_clSerials;
    std::list<std::string> m_clProtocols;
    int m_initResult = ZYLGENICAM::SDK_OK;
    std::chrono::milliseconds m_discoveryDelay{0};
    SdkCounters m_counters;
};

// Empties the registry (the library must hold nothing of it any more) and adds this one device.
ScriptedDevice& OnlyDevice(DeviceDescription description);

} // namespace Scripted
