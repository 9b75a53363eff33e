#include "support/scripted/ScriptedDevice.h"

#include <algorithm>
#include <utility>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "support/scripted/ScriptedImage.h"

namespace Scripted {

namespace {

using namespace ZYLGENICAM;
using Clock = std::chrono::steady_clock;

// Longest wait GetImage honours, so "infinite" timeouts cannot overflow the clock.
constexpr uint64_t kLongestWaitMs = 24ull * 3600 * 1000;

} // namespace

// One node map of the device and the GenICam XML it was built from.
class ScriptedDevice::Module final : public ZYLGENICAM::IModule {
public:
    // Throws GenICam_3_4::GenericException when the XML cannot be parsed.
    Module(const std::string& xml, const std::string& deviceName)
        : m_xml(xml), m_nodeMap(GenApi_3_4::CreateNodeMapFromXml(xml, deviceName))
    {
    }

    GenApi_3_4::INodeMap* GetNodeMap() override { return m_nodeMap.get(); }
    const char* GetXML() override { return m_xml.c_str(); }
    uint64_t GetXMLSize() override { return m_xml.size(); }

private:
    const std::string m_xml;
    const std::unique_ptr<GenApi_3_4::INodeMap> m_nodeMap;
};

ScriptedDevice::ScriptedDevice(DeviceDescription description)
    : m_role(description.role), m_identity(std::move(description.identity))
{
    for (std::size_t module = 0; module < m_modules.size(); ++module) {
        if (!description.moduleXml[module].empty()) {
            m_modules[module] = std::make_unique<Module>(description.moduleXml[module], m_identity.serialNumber);
        }
    }
    if (GenApi_3_4::CStringPtr userId = NodeMap(3) ? NodeMap(3)->GetNode("DeviceUserID") : nullptr) {
        m_userId = userId;
        m_userId->SetValue(m_identity.userDefinedName);
    }
    SetFrameScript(std::move(description.frames));
}

ScriptedDevice::~ScriptedDevice() = default;

void ScriptedDevice::Lose()
{
    Lock lock(m_mutex);
    m_lost = true;
    Changed();
}

void ScriptedDevice::SetFrameScript(FrameScript script)
{
    Lock lock(m_mutex);
    m_script = std::move(script);
    m_scriptPosition = 0;
    m_counters.stepsAnswered = 0;
    ++m_scriptVersion;
    Changed();
}

void ScriptedDevice::UpdateIdentity(const std::function<void(DeviceIdentity&)>& change)
{
    DeviceIdentity identity = Identity();
    change(identity);
    if (m_userId != nullptr) {
        m_userId->SetValue(identity.userDefinedName);
    }
    Lock lock(m_mutex);
    m_identity = std::move(identity);
}

DeviceIdentity ScriptedDevice::Identity() const
{
    Lock lock(m_mutex);
    DeviceIdentity identity = m_identity;
    lock.unlock();
    if (m_userId != nullptr && GenApi_3_4::IsReadable(m_userId)) {
        identity.userDefinedName = m_userId->GetValue().str();
    }
    return identity;
}

GenApi_3_4::INodeMap* ScriptedDevice::NodeMap(int module) const
{
    return m_modules.at(module) ? m_modules[module]->GetNodeMap() : nullptr;
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

bool ScriptedDevice::IsListed(DeviceRole role, uint64_t tlMask) const
{
    const bool inMask =
        role == DeviceRole::FrameGrabberCard || (tlMask & static_cast<uint64_t>(Identity().tlType)) != 0;
    return m_present && m_role == role && inMask;
}

ZYLGENICAM::IModule* ScriptedDevice::ModuleAt(int module) const
{
    return m_moduleMissing.at(module) ? nullptr : m_modules.at(module).get();
}

void ScriptedDevice::Count(uint64_t DeviceCounters::*counter)
{
    Lock lock(m_mutex);
    ++(m_counters.*counter);
    Changed();
}

int ScriptedDevice::Open(HandleState& handle)
{
    Lock lock(m_mutex);
    const int refusal = m_lost ? SDK_LOST : handle.open ? SDK_ERROR : SDK_OK;
    const int code = Answer(SdkCall::Open, &DeviceCounters::opens, refusal);
    handle.open = handle.open || code == SDK_OK;
    return code;
}

int ScriptedDevice::Close(HandleState& handle)
{
    Lock lock(m_mutex);
    const int code = Answer(SdkCall::Close, &DeviceCounters::closes, handle.open ? SDK_OK : SDK_NOT_OPEN);
    if (code == SDK_OK) {
        handle.open = false;
        EndGrab(handle);
    }
    return code;
}

int ScriptedDevice::StartGrabbing(HandleState& handle, uint64_t frameLimit)
{
    Lock lock(m_mutex);
    m_counters.lastFrameLimit = frameLimit;
    const int refusal = !handle.open ? SDK_NOT_OPEN : m_lost ? SDK_LOST : handle.grabbing ? SDK_ERROR : SDK_OK;
    const int code = Answer(SdkCall::StartGrabbing, &DeviceCounters::startGrabbings, refusal);
    if (code == SDK_OK) {
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
    const int code = Answer(SdkCall::StopGrabbing, &DeviceCounters::stopGrabbings, handle.open ? SDK_OK : SDK_NOT_OPEN);
    if (code == SDK_OK && handle.grabbing) {
        EndGrab(handle);
    }
    return code;
}

int ScriptedDevice::GetImage(HandleState& handle, ZYLGENICAM::IImage*& image, uint64_t timeoutMs)
{
    Lock lock(m_mutex);
    ++m_counters.getImageCalls;
    Changed();
    if (!handle.open) {
        return SDK_NOT_OPEN;
    }
    const uint64_t session = handle.grabSession;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(std::min(timeoutMs, kLongestWaitMs));
    for (;;) {
        if (m_lost || GrabInterrupted(handle, session)) {
            return m_lost ? SDK_LOST : SDK_TIMEOUT;
        }
        const uint64_t version = m_scriptVersion;
        const FrameStep step = StepAt(m_scriptPosition);
        const bool limitReached = handle.frameLimit != NO_FRAME_LIMIT && handle.framesThisSession >= handle.frameLimit;
        Clock::time_point due = handle.lastAnswer + step.delay;
        if (step.IsFrame()) {
            due = std::max(due, handle.lastFrame + m_script.framePeriod);
        }
        if (limitReached || step.waitsWholeTimeout || due > deadline) {
            m_changed.wait_until(lock, deadline, [&] { return m_lost || GrabInterrupted(handle, session); });
            if (m_lost) {
                return SDK_LOST;
            }
            // A timeout step is answered by the wait, unless the grab or the script changed meanwhile.
            if (step.waitsWholeTimeout && !limitReached && !GrabInterrupted(handle, session) &&
                version == m_scriptVersion) {
                Advance(handle);
            }
            return SDK_TIMEOUT;
        }
        if (due > Clock::now()) {
            m_changed.wait_until(
                lock, due, [&] { return m_lost || GrabInterrupted(handle, session) || version != m_scriptVersion; });
            continue;
        }
        Advance(handle);
        if (step.IsFrame()) {
            handle.lastFrame = handle.lastAnswer;
            ++handle.framesThisSession;
        }
        if (step.withImage) {
            m_images.push_back(std::make_unique<ScriptedImage>(*this, step));
            image = m_images.back().get();
            ++m_counters.imagesHandedOut;
        }
        return step.code;
    }
}

int ScriptedDevice::SetCLProtocol(const char* protocol, const char* serialPort)
{
    Lock lock(m_mutex);
    m_counters.clProtocolCalls.push_back({protocol == nullptr && serialPort == nullptr,
                                          protocol != nullptr ? protocol : "",
                                          serialPort != nullptr ? serialPort : ""});
    return Answer(SdkCall::SetCLProtocol);
}

int ScriptedDevice::SetCameraIP(const SetCameraIPCall& call)
{
    Lock lock(m_mutex);
    m_counters.cameraIPCalls.push_back(call);
    const int code = Answer(SdkCall::SetCameraIP);
    if (code == SDK_OK) {
        m_identity.ip = call.ip;
        m_identity.mask = call.mask;
        m_identity.gateway = call.gateway;
    }
    return code;
}

void ScriptedDevice::Destroyed(HandleState& handle)
{
    Lock lock(m_mutex);
    handle.open = false;
    EndGrab(handle);
    ++m_counters.camerasDestroyed;
    Changed();
}

int ScriptedDevice::Answer(SdkCall call, uint64_t DeviceCounters::*counter, int refusal)
{
    if (counter != nullptr) {
        ++(m_counters.*counter);
    }
    Changed();
    return refusal != SDK_OK ? refusal : m_results.at(static_cast<std::size_t>(call)).load();
}

void ScriptedDevice::EndGrab(HandleState& handle)
{
    handle.grabbing = false;
    ++handle.grabSession;
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
    if (step.withImage) {
        const auto byId = [](const FrameStep& a, const FrameStep& b) { return a.frameId < b.frameId; };
        step.frameId +=
            (position / count) * std::max_element(m_script.steps.begin(), m_script.steps.end(), byId)->frameId;
    }
    return step;
}

bool ScriptedDevice::GrabInterrupted(const HandleState& handle, uint64_t session)
{
    return !handle.open || !handle.grabbing || handle.grabSession != session;
}

// Moves the script on by the step just answered.
void ScriptedDevice::Advance(HandleState& handle)
{
    m_counters.stepsAnswered = ++m_scriptPosition;
    handle.lastAnswer = Clock::now();
    Changed();
}

} // namespace Scripted
