// The camera SDK the library calls (namespace ZYLGENICAM). The shipped library
// links the Aravis implementation (sdk/aravis); fault tests link a scripted one.
// See sdk/README.md for what modules, access states and transport types mean.
#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "ZylImage.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace ZYLGENICAM {

// Transport-layer types a device reports (bits of the discovery mask).
enum TLType : int {
    TL_GIGE = 1,
    TL_USB = 2,
    TL_CAMERALINK = 4,
    TL_SIMULATED = 8,
};

// Items of ICameraInfo::GetGigEInfo.
enum GigEInfoItem : int {
    GIGE_IP = 1,
    GIGE_MAC = 2,
    GIGE_MASK = 3,
    GIGE_GATEWAY = 4,
    GIGE_HOST_INTERFACE_IP = 6,
};

// Items of ICameraInfo::GetCLInfo (Camera Link records only).
enum CLInfoItem : int {
    CL_CARD_KEY = 1,    // key of the frame grabber, "GenCPCamera" for a serial-only camera
    CL_PROTOCOL = 2,    // stored protocol, may be empty
    CL_SERIAL_PORT = 3, // stored serial port, may be empty
};

// The frame limit of an acquisition that runs until it is stopped: the one value the device
// manager, the camera and the SDK all read as "no limit".
constexpr uint64_t NO_FRAME_LIMIT = ~uint64_t(0);

// Status codes of the SDK calls.
enum SdkResult : int {
    SDK_OK = 0,
    SDK_ERROR = -1,
    SDK_NOT_OPEN = -2,
    SDK_INVALID_ARGUMENT = -3,
    SDK_ACCESS_DENIED = -5,
    SDK_TIMEOUT = -11,
    SDK_LOST = -13,
};

// A device found by discovery. Texts stay valid while the record lives.
class ICameraInfo {
public:
    virtual int GetTLType() = 0;
    virtual int GetAccessStatus() = 0; // 0, 1: not available; 2 and above: usable
    virtual const char* GetSerialNumber() = 0;
    virtual const char* GetModelName() = 0;
    virtual const char* GetUserDefinedName() = 0;
    virtual const char* GetDeviceText() = 0;       // vendor name
    virtual const char* GetDeviceText2() = 0;      // device version
    virtual const char* GetGigEInfo(int item) = 0; // GigEInfoItem; "" when unknown or not GigE
    virtual const char* GetCLInfo(int item) = 0;   // CLInfoItem; "" when not Camera Link
    virtual void Destroy() = 0;                    // frees a discovery record

protected:
    ~ICameraInfo() = default;
};

// One node map of a device, and the GenICam XML it was built from.
class IModule {
public:
    virtual GenApi_3_4::INodeMap* GetNodeMap() = 0;
    virtual const char* GetXML() = 0; // GenICam description text, null if none
    virtual uint64_t GetXMLSize() = 0;

protected:
    ~IModule() = default;
};

class ICamera {
public:
    virtual int Open(int accessMode) = 0;
    virtual int Close() = 0;
    virtual bool IsOpen() = 0;
    virtual bool IsConnected() = 0;
    virtual bool IsGrabbing() = 0;
    virtual ICameraInfo* GetDeviceInfo() = 0; // owned by the camera
    // Modules: 0 transport layer, 1 interface, 2 auxiliary (card / stream),
    // 3 the device's feature node map, 4 data stream. Null where the transport has none.
    virtual IModule* GetModule0() = 0;
    virtual IModule* GetModule1() = 0;
    virtual IModule* GetModule2() = 0;
    virtual IModule* GetModule3() = 0;
    virtual IModule* GetModule4() = 0;
    virtual int StartGrabbing(int mode, uint64_t frameLimit) = 0; // NO_FRAME_LIMIT: until stopped
    virtual int StopGrabbing() = 0;
    // 0: image set (caller releases it); SDK_TIMEOUT; other negative: failure (image may be set).
    virtual int GetImage(IImage*& image, uint64_t timeoutMs) = 0;
    virtual int SetCLProtocol(const char* protocol, const char* serialPort) = 0; // both null: unbind
    virtual void Destroy() = 0;

protected:
    ~ICamera() = default;
};

int Init();
int UnInit();
// Records of every device whose transport type is in mask; the caller Destroy()s each.
std::list<ICameraInfo*> DiscoveryByTLType(uint64_t mask);
// A camera handle for a record (the record may be destroyed afterwards); null on failure.
ICamera* CreateCamera(ICameraInfo* info);
// Camera Link enumeration: frame-grabber cards (TL type 4, serial number = card key)
// and Camera Link cameras (TL type 4, GetCLInfo items filled).
std::list<ICameraInfo*> DiscoveryCLCards();
std::list<ICameraInfo*> DiscoveryCLCameras();
std::list<std::string> GetCLSerials();
std::list<std::string> GetCLProtocols();
int64_t SetCameraIP(const char* serialNumber, const char* ip, const char* mask, const char* gateway, bool persistent);

} // namespace ZYLGENICAM
