// The scripted camera SDK for tests: the ZYLGENICAM functions answer from devices a test
// describes here, and every device counts what the library did with it.
// Tests share a process, so each starts from Reset() (or OnlyDevice), which is only safe
// once the library holds no handle, record or image any more.
#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <string>

#include "support/scripted/ScriptedDescriptions.h"
#include "support/scripted/ScriptedDevice.h"

namespace Scripted {

// Calls the library made on the SDK as a whole.
struct SdkCounters {
    uint64_t inits = 0;
    uint64_t uninits = 0;
    uint64_t discoveries = 0; // DiscoveryByTLType calls
    uint64_t misuses = 0;     // calls on destroyed handles or records (also test failures)
};

// The test's side of the SDK; the ZYLGENICAM functions answer from what is set here.
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

    // Called by records and handles when the library uses one after destroying it.
    void ReportMisuse(const std::string& what);

private:
    ScriptedSdk() = default;
};

// Empties the registry (the library must hold nothing of it any more) and adds this one device.
ScriptedDevice& OnlyDevice(DeviceDescription description);

} // namespace Scripted
