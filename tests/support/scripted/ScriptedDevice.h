// One scripted device: its identity, node maps, frame script and counters.
// Tests configure it and read its counters from any thread; the scripted SDK objects
// (camera handles, records, images) reach it through the private part.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "support/scripted/ScriptedTypes.h"

namespace GenApi_3_4 {
struct INodeMap;
struct IString;
} // namespace GenApi_3_4

namespace Scripted {

class ScriptedCamera;
class ScriptedCameraInfo;
class ScriptedImage;
class ScriptedModule;
class ScriptedSdk;

class ScriptedDevice {
public:
    explicit ScriptedDevice(DeviceDescription description);
    ~ScriptedDevice();
    ScriptedDevice(const ScriptedDevice&) = delete;
    ScriptedDevice& operator=(const ScriptedDevice&) = delete;

    std::string SerialNumber() const;
    DeviceRole Role() const;

    // Absent devices are left out of every discovery; handles already created keep working.
    void SetPresent(bool present);
    // From now on IsConnected is false, Open fails and GetImage returns SDK_LOST.
    void Lose();
    bool IsLost() const;

    // Replaces the script and starts it from its first step.
    void SetFrameScript(FrameScript script);
    void SetResult(SdkCall call, int code);
    void SetCreateCameraFails(bool fails);
    // A missing module makes GetModuleN return null.
    void SetModuleMissing(int module, bool missing);
    // Changes identity texts seen by the next discoveries (the user-defined name goes to "DeviceUserID").
    void UpdateIdentity(const std::function<void(DeviceIdentity&)>& change);
    DeviceIdentity Identity() const;

    // The device's node map of a module, null when it has none; tests may read and write it directly.
    GenApi_3_4::INodeMap* NodeMap(int module = 3) const;

    DeviceCounters Counters() const;
    // Waits until the counters satisfy the condition; false when the timeout passed first.
    bool WaitUntil(const std::function<bool(const DeviceCounters&)>& condition,
                   std::chrono::milliseconds timeout = std::chrono::seconds(10)) const;

private:
    friend class ScriptedCamera;
    friend class ScriptedCameraInfo;
    friend class ScriptedImage;
    friend class ScriptedSdk;

    // State of one ICamera handle, guarded by the device's mutex.
    struct HandleState {
        uint64_t handleId = 0;
        bool open = false;
        bool grabbing = false;
        uint64_t grabSession = 0; // changes on every start and stop so waiting reads end
        uint64_t framesThisSession = 0;
        uint64_t frameLimit = ZYLGENICAM::NO_FRAME_LIMIT;
        std::chrono::steady_clock::time_point lastAnswer;
        std::chrono::steady_clock::time_point lastFrame;
    };

    using Lock = std::unique_lock<std::mutex>;

    // Called by the scripted SDK objects.
    bool IsPresent() const;
    bool CreateCameraFails() const;
    ScriptedModule* Module(int module) const;
    void CountRecordCreated();
    void CountRecordDestroyed();
    void CountCameraCreated(HandleState& handle);
    void CountCameraDestroyed(HandleState& handle);
    bool IsOpen(const HandleState& handle) const;
    bool IsGrabbing(const HandleState& handle) const;
    int Open(HandleState& handle, int accessMode);
    int Close(HandleState& handle);
    int StartGrabbing(HandleState& handle, int mode, uint64_t frameLimit);
    int StopGrabbing(HandleState& handle);
    int GetImage(HandleState& handle, ZYLGENICAM::IImage*& image, uint64_t timeoutMs);
    int SetCLProtocol(const char* protocol, const char* serialPort);
    int SetCameraIP(const SetCameraIPCall& call);
    void Released(ScriptedImage* image, uint64_t handleId);
    void UsedAfterRelease(const char* operation);

    // "DeviceUserID" of module 3: the user-defined name discovery reports; null when absent.
    GenApi_3_4::IString* UserIdNode() const;
    // The step at a script position, with repeated rounds' frame ids raised.
    FrameStep StepAt(uint64_t position) const;
    static bool GrabInterrupted(const HandleState& handle, uint64_t session);
    // Waits until the deadline unless the grab is stopped or the device lost first.
    int WaitForTimeout(Lock& lock, const HandleState& handle, uint64_t session,
                       std::chrono::steady_clock::time_point deadline);
    int Result(SdkCall call) const;
    ScriptedImage* HandOutImage(const FrameStep& step, HandleState& handle);
    void Changed(); // wakes GetImage waits and WaitUntil

    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    DeviceRole m_role;
    DeviceIdentity m_identity;
    std::array<std::unique_ptr<ScriptedModule>, 5> m_modules;
    std::array<bool, 5> m_moduleMissing{};
    FrameScript m_script;
    uint64_t m_scriptPosition = 0;
    uint64_t m_largestScriptFrameId = 0;
    uint64_t m_scriptVersion = 0;
    std::map<SdkCall, int> m_results;
    bool m_present = true;
    bool m_lost = false;
    bool m_createCameraFails = false;
    uint64_t m_nextHandleId = 1;
    std::unordered_map<ScriptedImage*, std::unique_ptr<ScriptedImage>> m_imagesOut;
    // Released images stay allocated for a while so a second Release is reported, not undefined.
    std::deque<std::unique_ptr<ScriptedImage>> m_imagesReleased;
    DeviceCounters m_counters;
};

} // namespace Scripted
