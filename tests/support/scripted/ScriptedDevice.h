// One scripted device: its identity, node maps, frame script and counters.
// Tests configure it and read its counters from any thread; the scripted SDK objects
// (camera handles, records, images) reach it through the private part.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "support/scripted/ScriptedDescriptions.h"

namespace GenApi_3_4 {
struct IString;
}

namespace Scripted {

class ScriptedImage;

class ScriptedDevice {
public:
    explicit ScriptedDevice(DeviceDescription description);
    ~ScriptedDevice();

    std::string SerialNumber() const { return Identity().serialNumber; }

    // Absent devices are left out of every discovery; handles already created keep working.
    void SetPresent(bool present) { m_present = present; }
    // From now on IsConnected is false, Open fails and GetImage returns SDK_LOST.
    void Lose();

    // Replaces the script and starts it from its first step.
    void SetFrameScript(FrameScript script);
    void SetResult(SdkCall call, int code) { m_results.at(static_cast<std::size_t>(call)) = code; }
    void SetCreateCameraFails(bool fails) { m_createCameraFails = fails; }
    // A missing module makes GetModuleN return null.
    void SetModuleMissing(int module, bool missing) { m_moduleMissing.at(module) = missing; }
    // Changes identity texts seen by the next discoveries (the user-defined name goes to "DeviceUserID").
    void UpdateIdentity(const std::function<void(DeviceIdentity&)>& change);
    DeviceIdentity Identity() const;

    // The device's node map of a module, null when it has none; tests may read and write it directly.
    GenApi_3_4::INodeMap* NodeMap(int module = 3) const;

    DeviceCounters Counters() const;
    // Waits until the counters satisfy the condition; false when the timeout passed first.
    bool WaitUntil(const std::function<bool(const DeviceCounters&)>& condition,
                   std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;

    // The SDK functions' side: discovery, CreateCamera and SetCameraIP.
    bool IsListed(DeviceRole role, uint64_t tlMask) const;
    bool CreateCameraFails() const { return m_createCameraFails; }
    int SetCameraIP(const SetCameraIPCall& call);

private:
    friend class ScriptedCamera;
    friend class ScriptedCameraInfo;
    friend class ScriptedImage;

    class Module;

    // State of one ICamera handle, written under the device's mutex (open and grabbing are read without it).
    struct HandleState {
        std::atomic<bool> open{false};
        std::atomic<bool> grabbing{false};
        uint64_t grabSession = 0; // changes on every start and stop so waiting reads end
        uint64_t framesThisSession = 0;
        uint64_t frameLimit = ZYLGENICAM::NO_FRAME_LIMIT;
        std::chrono::steady_clock::time_point lastAnswer;
        std::chrono::steady_clock::time_point lastFrame;
    };

    using Lock = std::unique_lock<std::mutex>;

    // Called by the handles, records and images.
    bool IsLost() const { return m_lost; }
    ZYLGENICAM::IModule* ModuleAt(int module) const;
    void Count(uint64_t DeviceCounters::*counter);
    int Open(HandleState& handle);
    int Close(HandleState& handle);
    int StartGrabbing(HandleState& handle, uint64_t frameLimit);
    int StopGrabbing(HandleState& handle);
    int GetImage(HandleState& handle, ZYLGENICAM::IImage*& image, uint64_t timeoutMs);
    int SetCLProtocol(const char* protocol, const char* serialPort);
    void Destroyed(HandleState& handle);

    // Counts a call and answers it: the refusal when the handle's state forbids it, else the scripted result.
    int Answer(SdkCall call, uint64_t DeviceCounters::*counter = nullptr, int refusal = ZYLGENICAM::SDK_OK);
    static void EndGrab(HandleState& handle);
    // The step at a script position, with repeated rounds' frame ids raised.
    FrameStep StepAt(uint64_t position) const;
    static bool GrabInterrupted(const HandleState& handle, uint64_t session);
    void Advance(HandleState& handle);
    void Changed() { m_changed.notify_all(); } // wakes GetImage waits and WaitUntil

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    const DeviceRole m_role;
    DeviceIdentity m_identity;
    std::array<std::unique_ptr<Module>, 5> m_modules;
    std::array<std::atomic<bool>, 5> m_moduleMissing{};
    // "DeviceUserID" of module 3, when it has one: discovery reports its value as the user-defined name.
    GenApi_3_4::IString* m_userId = nullptr;
    FrameScript m_script;
    uint64_t m_scriptPosition = 0;
    uint64_t m_scriptVersion = 0;
    std::array<std::atomic<int>, 6> m_results{}; // one per SdkCall; 0 is SDK_OK
    std::atomic<bool> m_present{true};
    std::atomic<bool> m_lost{false}; // written under the mutex: GetImage waits on it
    std::atomic<bool> m_createCameraFails{false};
    // Every image handed out, its buffers freed at Release: a second Release is reported, not undefined.
    std::deque<std::unique_ptr<ScriptedImage>> m_images;
    DeviceCounters m_counters;
};

} // namespace Scripted
