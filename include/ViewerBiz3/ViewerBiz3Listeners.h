// The fifteen listener interfaces a host implements. Each has exactly one
// callback, first in its virtual table; the destructor comes after it.
// Listener objects belong to the host; the library only keeps pointers.
// A listener may be registered or unregistered at any time; after its
// unregister call returned it is not called again.
#pragma once

#include <string>
#include <vector>

#include "ViewerBiz3Types.h"

namespace ViewerBiz3 {

class ITLTypeUpdate {
public:
    virtual void OnTLTypeUpdate(unsigned long long tlTypeMask) = 0;
    virtual ~ITLTypeUpdate() = default;
};

class IDeviceListUpdate {
public:
    // kind 0: whole list (adapter keys, camera keys); kind 1: one device (list key, key).
    virtual void OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second) = 0;
    virtual ~IDeviceListUpdate() = default;
};

class IFocusUpdate {
public:
    virtual void OnFocusUpdate(FOCUS_TYPE type, std::string deviceId) = 0;
    virtual ~IFocusUpdate() = default;
};

class ILayoutUpdate {
public:
    virtual void OnLayoutUpdate(LAYOUT_TYPE layout) = 0;
    virtual ~ILayoutUpdate() = default;
};

class IImageUpdate {
public:
    // image is a ZYLGENICAM::IImage*, or null after a stop. Every image listener
    // gets the same frame and must Release() it once; the frame stays valid until
    // the last of them did, then its buffer goes back to the camera. With no image
    // listener a frame goes back at once.
    // extra1/extra2: image mode and scaler for profile cameras, else 0.
    virtual void OnImageUpdate(std::string cameraKey, void* image, int extra1, int extra2) = 0;
    virtual ~IImageUpdate() = default;
};

class IImageModeUpdate {
public:
    virtual void OnImageModeUpdate(std::string cameraKey, int imageMode) = 0;
    virtual ~IImageModeUpdate() = default;
};

class ISLImageShowModeUpdate {
public:
    virtual void OnSLImageShowModeUpdate(std::string cameraId, int showMode) = 0;
    virtual ~ISLImageShowModeUpdate() = default;
};

class IAcqStatisticUpdate {
public:
    // fromSetInfo: false from an acquisition thread, true after SetCameraInfo.
    virtual void OnAcqStatisticUpdate(std::string cameraName, bool fromSetInfo) = 0;
    virtual ~IAcqStatisticUpdate() = default;
};

class ITimerNodeUpdate {
public:
    virtual void OnTimerNodeUpdate(std::string deviceId, std::string nodeName, std::string nodeValue) = 0;
    virtual ~ITimerNodeUpdate() = default;
};

class IImportUpdate {
public:
    virtual void OnImportUpdate(std::string text) = 0;
    virtual ~IImportUpdate() = default;
};

class ILoggerUpdate {
public:
    // level is one of "Debug", "Info", "Warning", "Error", "Deadly".
    virtual void OnLoggerUpdate(std::string source, std::string level, std::string message) = 0;
    virtual ~ILoggerUpdate() = default;
};

class IROIDrawUpdate {
public:
    // operation: 0 draw, 1 move/resize, 2 remove. index and result are the caller's variables.
    virtual void OnROIDrawUpdate(std::string cameraId, int x, int y, int width, int height, int operation, int& index,
                                 bool& result, int extra1, int extra2) = 0;
    virtual ~IROIDrawUpdate() = default;
};

class ICorrectionUpdate {
public:
    virtual void OnCorrectionUpdate(std::string cameraId, int kind, float value, void* data) = 0;
    virtual ~ICorrectionUpdate() = default;
};

class ILangUpdate {
public:
    virtual void OnLangUpdate(std::string language) = 0;
    virtual ~ILangUpdate() = default;
};

class ICameraIdUpdate {
public:
    virtual void OnCameraIdUpdate(std::string oldId, std::string newName) = 0;
    virtual ~ICameraIdUpdate() = default;
};

} // namespace ViewerBiz3
