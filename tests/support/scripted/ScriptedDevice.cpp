#include "support/scripted/ScriptedDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "genapi/GenApi.h"
#include "support/scripted/ScriptedImage.h"
#include "support/scripted/ScriptedModule.h"

namespace Scripted {

namespace {

using Clock = std::chrono::steady_clock;

// Released images kept allocated to catch a second Release; older ones are freed.
constexpr std::size_t kReleasedImagesKept = 65536;
// Longest wait GetImage honours, so "infinite" timeouts cannot overflow the clock.
constexpr uint64_t kLongestWaitMs = 24ull * 3600 * 1000;

uint64_t LargestFrameId(const FrameScript& script)
{
    uint64_t largest = 0;
    for (const FrameStep& step : script.steps) {
        largest = std::max(largest, step.frameId);
    }
    return largest;
}

bool CarriesImage(const FrameStep& step)
{
    return step.kind == FrameStep::Kind::Frame || (step.kind == FrameStep::Kind::Code && step.withImage);
}

} // namespace

ScriptedDevice::ScriptedDevice(DeviceDescription description)
    : m_role(description.role), m_identity(std::move(description.identity)), m_script(std::move(description.frames)),
      m_largestScriptFrameId(LargestFrameId(m_script))
{
    for (std::size_t module = 0; module < m_modules.size(); ++module) {
        if (!description.moduleXml[module].empty()) {
            m_modules[module] =
                std::make_unique<ScriptedModule>(description.moduleXml[module], m_identity.serialNumber);
        }
    }
    if (GenApi_3_4::IString* userId = UserIdNode()) {
        userId->SetValue(m_identity.userDefinedName);
    }
}

ScriptedDevice::~ScriptedDevice() = default;

std::string ScriptedDevice::SerialNumber() const
{
    Lock lock(m_mutex);
    return m_identity.serialNumber;
}

DeviceRole ScriptedDevice::Role() const
{
    return m_role;
}

void ScriptedDevice::SetPresent(bool present)
{
    Lock lock(m_mutex);
    m_present = present;
}

void ScriptedDevice::Lose()
{
    Lock lock(m_mutex);
    m_lost = true;
    Changed();
}

bool ScriptedDevice::IsLost() const
{
    Lock lock(m_mutex);
    return m_lost;
}

void ScriptedDevice::SetFrameScript(FrameScript script)
{
    Lock lock(m_mutex);
    m_script = std::move(script);
    m_largestScriptFrameId = LargestFrameId(m_script);
    m_scriptPosition = 0;
    m_counters.stepsAnswered = 0;
    ++m_scriptVersion;
    Changed();
}

void ScriptedDevice::SetResult(SdkCall call, int code)
{
    Lock lock(m_mutex);
    m_results[call] = code;
}

void ScriptedDevice::SetCreateCameraFails(bool fails)
{
    Lock lock(m_mutex);
    m_createCameraFails = fails;
}

void ScriptedDevice::SetModuleMissing(int module, bool missing)
{
    Lock lock(m_mutex);
    if (module >= 0 && module < static_cast<int>(m_moduleMissing.size())) {
        m_moduleMissing[module] = missing;
    }
}

void ScriptedDevice::UpdateIdentity(const std::function<void(DeviceIdentity&)>& change)
{
    DeviceIdentity identity = Identity();
    change(identity);
    GenApi_3_4::IString* userId = UserIdNode();
    if (userId != nullptr) {
        userId->SetValue(identity.userDefinedName);
    }
    Lock lock(m_mutex);
    m_identity = std::move(identity);
}

DeviceIdentity ScriptedDevice::Identity() const
{
    DeviceIdentity identity;
    {
        Lock lock(m_mutex);
        identity = m_identity;
    }
    GenApi_3_4::IString* userId = UserIdNode();
    if (userId != nullptr && GenApi_3_4::IsReadable(userId)) {
        identity.userDefinedName = userId->GetValue().str();
    }
    return identity;
}

GenApi_3_4::INodeMap* ScriptedDevice::NodeMap(int module) const
{
    if (module < 0 || module >= static_cast<int>(m_modules.size()) || !m_modules[module]) {
        return nullptr;
    }
    return m_modules[module]->GetNodeMap();
}

DeviceCounters ScriptedDevice::Counters() const
{
    Lock lock(m_mutex);
    return m_counters;
}

bool ScriptedDevice::WaitUntil(const std::function<bool(const DeviceCounters&)>& condition,
                               std::chrono::milliseconds timeout) const
{
    Lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return condition(m_counters); });
}

bool ScriptedDevice::IsPresent() const
{
    Lock lock(m_mutex);
    return m_present;
}

bool ScriptedDevice::CreateCameraFails() const
{
    Lock lock(m_mutex);
    return m_createCameraFails;
}

ScriptedModule* ScriptedDevice::Module(int module) const
{
    Lock lock(m_mutex);
    if (module < 0 || module >= static_cast<int>(m_modules.size()) || m_moduleMissing[module]) {
        return nullptr;
    }
    return m_modules[module].get();
}

void ScriptedDevice::CountRecordCreated()
{
    Lock lock(m_mutex);
    ++m_counters.recordsCreated;
    Changed();
}

void ScriptedDevice::CountRecordDestroyed()
{
    Lock lock(m_mutex);
    ++m_counters.recordsDestroyed;
    Changed();
}

void ScriptedDevice::CountCameraCreated(HandleState& handle)
{
    Lock lock(m_mutex);
    handle.handleId = m_nextHandleId++;
    ++m_counters.camerasCreated;
    Changed();
}

void ScriptedDevice::CountCameraDestroyed(HandleState& handle)
{
    Lock lock(m_mutex);
    handle.open = false;
    handle.grabbing = false;
    ++handle.grabSession;
    ++m_counters.camerasDestroyed;
    Changed();
}

bool ScriptedDevice::IsOpen(const HandleState& handle) const
{
    Lock lock(m_mutex);
    return handle.open;
}

bool ScriptedDevice::IsGrabbing(const HandleState& handle) const
{
    Lock lock(m_mutex);
    return handle.grabbing;
}

int ScriptedDevice::Open(HandleState& handle, int /*accessMode*/)
{
    Lock lock(m_mutex);
    ++m_counters.opens;
    Changed();
    if (m_lost) {
        return ZYLGENICAM::SDK_LOST;
    }
    if (handle.open) {
        return ZYLGENICAM::SDK_ERROR;
    }
    const int code = Result(SdkCall::Open);
    if (code == ZYLGENICAM::SDK_OK) {
        handle.open = true;
    }
    return code;
}

int ScriptedDevice::Close(HandleState& handle)
{
    Lock lock(m_mutex);
    ++m_counters.closes;
    Changed();
    if (!handle.open) {
        return ZYLGENICAM::SDK_NOT_OPEN;
    }
    const int code = Result(SdkCall::Close);
    if (code == ZYLGENICAM::SDK_OK) {
        handle.open = false;
        handle.grabbing = false;
        ++handle.grabSession;
    }
    return code;
}

int ScriptedDevice::StartGrabbing(HandleState& handle, int /*mode*/, uint64_t frameLimit)
{
    Lock lock(m_mutex);
    ++m_counters.startGrabbings;
    m_counters.lastFrameLimit = frameLimit;
    Changed();
    if (!handle.open) {
        return ZYLGENICAM::SDK_NOT_OPEN;
    }
    if (m_lost) {
        return ZYLGENICAM::SDK_LOST;
    }
    if (handle.grabbing) {
        return ZYLGENICAM::SDK_ERROR;
    }
    const int code = Result(SdkCall::StartGrabbing);
    if (code == ZYLGENICAM::SDK_OK) {
        handle.grabbing = true;
        ++handle.grabSession;
        handle.framesThisSession = 0;
        handle.frameLimit = frameLimit;
        handle.lastAnswer = Clock::now();
        handle.lastFrame = handle.lastAnswer;
    }
    return code;
}

int ScriptedDevice::StopGrabbing(HandleState& handle)
{
    Lock lock(m_mutex);
    ++m_counters.stopGrabbings;
    Changed();
    if (!handle.open) {
        return ZYLGENICAM::SDK_NOT_OPEN;
    }
    const int code = Result(SdkCall::StopGrabbing);
    if (code == ZYLGENICAM::SDK_OK && handle.grabbing) {
        handle.grabbing = false;
        ++handle.grabSession;
    }
    return code;
}

int ScriptedDevice::GetImage(HandleState& handle, ZYLGENICAM::IImage*& image, uint64_t timeoutMs)
{
    image = nullptr;
    Lock lock(m_mutex);
    ++m_counters.getImageCalls;
    Changed();
    if (!handle.open) {
        return ZYLGENICAM::SDK_NOT_OPEN;
    }
    if (m_lost) {
        return ZYLGENICAM::SDK_LOST;
    }
    if (!handle.grabbing) {
        return ZYLGENICAM::SDK_TIMEOUT;
    }
    const uint64_t session = handle.grabSession;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(std::min(timeoutMs, kLongestWaitMs));
    for (;;) {
        if (m_lost) {
            return ZYLGENICAM::SDK_LOST;
        }
        if (GrabInterrupted(handle, session)) {
            return ZYLGENICAM::SDK_TIMEOUT;
        }
        const bool frameLimitReached =
            handle.frameLimit != ZYLGENICAM::NO_FRAME_LIMIT && handle.framesThisSession >= handle.frameLimit;
        if (frameLimitReached) {
            return WaitForTimeout(lock, handle, session, deadline);
        }
        const FrameStep step = StepAt(m_scriptPosition);
        if (step.kind == FrameStep::Kind::Timeout) {
            const uint64_t version = m_scriptVersion;
            const int code = WaitForTimeout(lock, handle, session, deadline);
            if (code == ZYLGENICAM::SDK_TIMEOUT && !GrabInterrupted(handle, session) && version == m_scriptVersion) {
                ++m_scriptPosition;
                m_counters.stepsAnswered = m_scriptPosition;
                handle.lastAnswer = Clock::now();
                Changed();
            }
            return code;
        }
        Clock::time_point due = handle.lastAnswer + step.delay;
        if (step.kind == FrameStep::Kind::Frame) {
            due = std::max(due, handle.lastFrame + m_script.framePeriod);
        }
        if (due > deadline) {
            return WaitForTimeout(lock, handle, session, deadline);
        }
        if (due > Clock::now()) {
            const uint64_t version = m_scriptVersion;
            m_changed.wait_until(
                lock, due, [&] { return m_lost || GrabInterrupted(handle, session) || version != m_scriptVersion; });
            continue;
        }
        ++m_scriptPosition;
        m_counters.stepsAnswered = m_scriptPosition;
        handle.lastAnswer = Clock::now();
        if (step.kind == FrameStep::Kind::Frame) {
            handle.lastFrame = handle.lastAnswer;
            ++handle.framesThisSession;
        }
        if (CarriesImage(step)) {
            image = HandOutImage(step, handle);
        }
        Changed();
        return step.code;
    }
}

int ScriptedDevice::SetCLProtocol(const char* protocol, const char* serialPort)
{
    Lock lock(m_mutex);
    SetCLProtocolCall call;
    call.unbind = protocol == nullptr && serialPort == nullptr;
    call.protocol = protocol != nullptr ? protocol : "";
    call.serialPort = serialPort != nullptr ? serialPort : "";
    m_counters.clProtocolCalls.push_back(std::move(call));
    Changed();
    return Result(SdkCall::SetCLProtocol);
}

int ScriptedDevice::SetCameraIP(const SetCameraIPCall& call)
{
    Lock lock(m_mutex);
    m_counters.cameraIPCalls.push_back(call);
    Changed();
    const int code = Result(SdkCall::SetCameraIP);
    if (code == ZYLGENICAM::SDK_OK) {
        m_identity.ip = call.ip;
        m_identity.mask = call.mask;
        m_identity.gateway = call.gateway;
    }
    return code;
}

void ScriptedDevice::Released(ScriptedImage* image, uint64_t /*handleId*/)
{
    Lock lock(m_mutex);
    if (!image->MarkReleased()) {
        ++m_counters.doubleReleases;
        const std::string serial = m_identity.serialNumber;
        Changed();
        lock.unlock();
        ADD_FAILURE() << "scripted device " << serial << ": image released twice";
        return;
    }
    ++m_counters.imagesReleased;
    auto found = m_imagesOut.find(image);
    if (found != m_imagesOut.end()) {
        image->FreeBuffers();
        m_imagesReleased.push_back(std::move(found->second));
        m_imagesOut.erase(found);
        if (m_imagesReleased.size() > kReleasedImagesKept) {
            m_imagesReleased.pop_front();
        }
    }
    Changed();
}

void ScriptedDevice::UsedAfterRelease(const char* operation)
{
    Lock lock(m_mutex);
    ++m_counters.imageUsesAfterRelease;
    const std::string serial = m_identity.serialNumber;
    Changed();
    lock.unlock();
    ADD_FAILURE() << "scripted device " << serial << ": " << operation << " on a released image";
}

GenApi_3_4::IString* ScriptedDevice::UserIdNode() const
{
    GenApi_3_4::INodeMap* nodeMap = NodeMap(3);
    if (nodeMap == nullptr) {
        return nullptr;
    }
    GenApi_3_4::CStringPtr userId = nodeMap->GetNode("DeviceUserID");
    return userId.IsValid() ? static_cast<GenApi_3_4::IString*>(userId) : nullptr;
}

FrameStep ScriptedDevice::StepAt(uint64_t position) const
{
    const uint64_t count = m_script.steps.size();
    if (position < count) {
        return m_script.steps[position];
    }
    if (count == 0 || m_script.whenExhausted == WhenExhausted::KeepTimingOut) {
        return FrameStep::Timeout();
    }
    FrameStep step = m_script.steps[position % count];
    if (CarriesImage(step)) {
        step.frameId += (position / count) * m_largestScriptFrameId;
    }
    return step;
}

bool ScriptedDevice::GrabInterrupted(const HandleState& handle, uint64_t session)
{
    return !handle.open || !handle.grabbing || handle.grabSession != session;
}

int ScriptedDevice::WaitForTimeout(Lock& lock, const HandleState& handle, uint64_t session, Clock::time_point deadline)
{
    m_changed.wait_until(lock, deadline, [&] { return m_lost || GrabInterrupted(handle, session); });
    return m_lost ? ZYLGENICAM::SDK_LOST : ZYLGENICAM::SDK_TIMEOUT;
}

int ScriptedDevice::Result(SdkCall call) const
{
    auto found = m_results.find(call);
    return found != m_results.end() ? found->second : ZYLGENICAM::SDK_OK;
}

ScriptedImage* ScriptedDevice::HandOutImage(const FrameStep& step, HandleState& handle)
{
    auto image = std::make_unique<ScriptedImage>(*this, handle.handleId, step);
    ScriptedImage* handedOut = image.get();
    m_imagesOut.emplace(handedOut, std::move(image));
    ++m_counters.imagesHandedOut;
    return handedOut;
}

void ScriptedDevice::Changed()
{
    m_changed.notify_all();
}

} // namespace Scripted
