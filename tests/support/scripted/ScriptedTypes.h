// Plain descriptions of scripted devices: who a device is, which node maps it has,
// what its acquisition produces, and what the tests read back from it.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ZylSdk.h"

namespace Scripted {

// PFNC pixel format codes used by the scripts.
inline constexpr uint64_t PFNC_MONO8 = 0x01080001;
inline constexpr uint64_t PFNC_RGB8 = 0x02180014;
inline constexpr uint64_t PFNC_COORD3D_C16 = 0x011000B8;

// One answer of ICamera::GetImage.
struct FrameStep {
    enum class Kind {
        Frame,   // result 0 with an image
        Timeout, // waits the caller's whole timeout, then SDK_TIMEOUT
        Code,    // returns `code` at once, with an image only when `withImage` is set
    };
    Kind kind = Kind::Frame;
    int code = ZYLGENICAM::SDK_OK;
    uint64_t frameId = 0;
    uint64_t width = 640;
    uint64_t height = 480;
    uint64_t pixelFormat = PFNC_MONO8;
    bool valid = true;
    bool withImage = false;
    std::vector<uint64_t> chunkSizes; // one chunk per entry, ids 1, 2, ...
    uint64_t timestampNs = 0;
    std::chrono::milliseconds delay{0}; // the step is not due before this long after the previous answer

    static FrameStep Frame(uint64_t frameId, uint64_t width = 640, uint64_t height = 480,
                           uint64_t pixelFormat = PFNC_MONO8);
    static FrameStep Timeout();
    // Any result code; SDK_TIMEOUT here returns at once, unlike Timeout().
    static FrameStep Code(int code);

    FrameStep& Invalid();
    FrameStep& WithImage();
    FrameStep& Chunks(std::vector<uint64_t> sizes);
    FrameStep& After(std::chrono::milliseconds wait);
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

    static FrameScript Empty(); // no steps: ready to Add to
    FrameScript& Add(FrameStep step);
    // count frames with ids firstId, firstId + 1, ...
    FrameScript& AddFrames(uint64_t firstId, uint64_t count, uint64_t width = 640, uint64_t height = 480,
                           uint64_t pixelFormat = PFNC_MONO8);
    FrameScript& Then(WhenExhausted behaviour);
    FrameScript& Period(std::chrono::milliseconds period);
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
    // GigE Vision items
    std::string ip = "169.254.10.20";
    std::string mac = "00:11:22:33:44:55";
    std::string mask = "255.255.0.0";
    std::string gateway = "0.0.0.0";
    std::string hostInterfaceIp = "169.254.10.1";
    // Camera Link items
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

} // namespace Scripted
