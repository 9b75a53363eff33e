// How a test describes a scripted device (who it is, which node maps it has, what its acquisition
// produces), ready-made descriptions on the GenICam documents in tests/data, and what tests read back.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ZylSdk.h"

namespace Scripted {

inline constexpr uint64_t PFNC_MONO8 = 0x01080001;
inline constexpr uint64_t PFNC_RGB8 = 0x02180014;
inline constexpr uint64_t PFNC_COORD3D_C16 = 0x011000B8;

// One answer of ICamera::GetImage.
struct FrameStep {
    int code = ZYLGENICAM::SDK_OK;
    bool withImage = true;          // with code 0: a frame
    bool waitsWholeTimeout = false; // waits the caller's whole timeout, then answers
    uint64_t frameId = 0;
    uint64_t width = 640;
    uint64_t height = 480;
    uint64_t pixelFormat = PFNC_MONO8;
    std::vector<uint64_t> chunkSizes;   // one chunk per entry, ids 1, 2, ...
    std::chrono::milliseconds delay{0}; // the step is not due before this long after the previous answer

    static FrameStep Frame(uint64_t frameId, uint64_t width = 640, uint64_t height = 480,
                           uint64_t pixelFormat = PFNC_MONO8)
    {
        FrameStep step;
        step.frameId = frameId;
        step.width = width;
        step.height = height;
        step.pixelFormat = pixelFormat;
        return step;
    }
    static FrameStep Timeout() { return Code(ZYLGENICAM::SDK_TIMEOUT).Set(&FrameStep::waitsWholeTimeout, true); }
    // Any result code, at once and without an image unless WithImage().
    static FrameStep Code(int code)
    {
        return FrameStep().Set(&FrameStep::code, code).Set(&FrameStep::withImage, false);
    }

    FrameStep& WithImage() { return Set(&FrameStep::withImage, true); }
    FrameStep& Chunks(std::vector<uint64_t> sizes) { return Set(&FrameStep::chunkSizes, std::move(sizes)); }
    FrameStep& After(std::chrono::milliseconds wait) { return Set(&FrameStep::delay, wait); }

    // Frames are paced by the script's period and count towards a frame limit.
    bool IsFrame() const { return code == ZYLGENICAM::SDK_OK && withImage; }

private:
    template <typename Field>
    FrameStep& Set(Field FrameStep::*field, Field value)
    {
        this->*field = std::move(value);
        return *this;
    }
};

// What GetImage answers once every step has been used.
enum class WhenExhausted {
    Repeat, // the steps again, each frame id raised by the script's largest frame id per round
    KeepTimingOut,
};

// The sequence a device's acquisition produces, shared by all handles of the device.
// The position in the script survives Stop/StartGrabbing; SetFrameScript starts it over.
struct FrameScript {
    std::vector<FrameStep> steps{FrameStep::Frame(1)};
    WhenExhausted whenExhausted = WhenExhausted::Repeat;
    // Least time between two frames (0: as fast as asked); timeouts and codes are not paced.
    std::chrono::milliseconds framePeriod{0};

    static FrameScript Empty()
    {
        FrameScript script;
        script.steps.clear();
        return script;
    }
    FrameScript& Add(FrameStep step)
    {
        steps.push_back(std::move(step));
        return *this;
    }
    // count frames with ids firstId, firstId + 1, ...
    FrameScript& AddFrames(uint64_t firstId, uint64_t count, uint64_t width = 640, uint64_t height = 480,
                           uint64_t pixelFormat = PFNC_MONO8)
    {
        for (uint64_t id = firstId; id < firstId + count; ++id) {
            Add(FrameStep::Frame(id, width, height, pixelFormat));
        }
        return *this;
    }
    FrameScript& Then(WhenExhausted behaviour)
    {
        whenExhausted = behaviour;
        return *this;
    }
    FrameScript& Period(std::chrono::milliseconds period)
    {
        framePeriod = period;
        return *this;
    }
};

enum class DeviceRole {
    Camera,           // listed by DiscoveryByTLType (and by DiscoveryCLCameras when TL type is Camera Link)
    FrameGrabberCard, // listed only by DiscoveryCLCards; serial number is the card key
};

struct DeviceIdentity {
    int tlType = ZYLGENICAM::TL_GIGE;
    int accessStatus = 3; // 0 and 1: not available
    std::string serialNumber;
    std::string modelName = "Scripted-Area";
    // Initial value of the node map's "DeviceUserID" when module 3 has one: that node is what
    // later discoveries report, so a rename through the node map is seen.
    std::string userDefinedName;
    std::string deviceText = "ScriptedVision";
    std::string deviceText2 = "1.0.0";
    std::string ip = "169.254.10.20";
    std::string mac = "00:11:22:33:44:55";
    std::string mask = "255.255.0.0";
    std::string gateway = "0.0.0.0";
    std::string hostInterfaceIp = "169.254.10.1";
    std::string clCardKey;
    std::string clProtocol;
    std::string clSerialPort;
};

struct DeviceDescription {
    DeviceRole role = DeviceRole::Camera;
    DeviceIdentity identity;
    // GenICam XML per module (0 transport layer ... 4 data stream); empty: no such module.
    std::array<std::string, 5> moduleXml;
    FrameScript frames;
};

// Calls whose result a test can script (sticky until changed; default SDK_OK).
enum class SdkCall { Open, Close, StartGrabbing, StopGrabbing, SetCLProtocol, SetCameraIP };

struct SetCLProtocolCall {
    bool unbind = false; // both arguments null
    std::string protocol;
    std::string serialPort;
};

struct SetCameraIPCall {
    std::string ip;
    std::string mask;
    std::string gateway;
    bool persistent = false;
};

// What happened to one device, read as a consistent snapshot.
struct DeviceCounters {
    uint64_t imagesHandedOut = 0;
    uint64_t imagesReleased = 0;
    uint64_t doubleReleases = 0;        // also reported as a test failure
    uint64_t imageUsesAfterRelease = 0; // also reported as a test failure
    uint64_t getImageCalls = 0;
    uint64_t opens = 0; // Open calls, whatever their result
    uint64_t closes = 0;
    uint64_t startGrabbings = 0;
    uint64_t stopGrabbings = 0;
    std::optional<uint64_t> lastFrameLimit;
    uint64_t camerasCreated = 0; // CreateCamera handles
    uint64_t camerasDestroyed = 0;
    uint64_t recordsCreated = 0; // discovery records
    uint64_t recordsDestroyed = 0;
    uint64_t stepsAnswered = 0; // position in the frame script
    std::vector<SetCLProtocolCall> clProtocolCalls;
    std::vector<SetCameraIPCall> cameraIPCalls;

    uint64_t ImagesOutstanding() const { return imagesHandedOut - imagesReleased; }
};

// Ready-made descriptions on the documents in tests/data; frame ids run 1, 2, 3...
// The profile camera's features, "scripted_profile_camera.xml".
std::string ProfileCameraXml();
// Features "scripted_area_camera.xml" (module 3), stream "scripted_auxiliary.xml" (module 2); 640 x 480 Mono8 frames.
DeviceDescription AreaCamera(const std::string& serialNumber, const std::string& userDefinedName = "",
                             int tlType = ZYLGENICAM::TL_GIGE);
// Serial numbers of profile cameras start with 'F'; 3200 x 1 Coord3D_C16 frames with chunks of 64 and 6400 bytes.
DeviceDescription ProfileCamera(const std::string& serialNumber, const std::string& userDefinedName = "",
                                int tlType = ZYLGENICAM::TL_GIGE);
// Its serial number is its key; module 2 is "scripted_card.xml".
DeviceDescription FrameGrabberCard(const std::string& cardKey);
// Behind the card cardKey ("GenCPCamera" for a serial-only camera); area features, card module 2.
DeviceDescription CameraLinkCamera(const std::string& serialNumber, const std::string& cardKey,
                                   const std::string& protocol = "", const std::string& serialPort = "");

} // namespace Scripted
