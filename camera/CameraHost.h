// The narrow seam through which a camera reaches the device manager that owns it.
// Cameras never include the device manager: they call whatever host is registered here,
// so a camera can also run under a test host, or under none at all.
#pragma once

#include <cstddef>
#include <string>

#include "ZylImage.h"

class Camera;

class CameraHost {
public:
    // Hands the image to every image listener; returns how many were handed it, each of which
    // releases it once.
    virtual std::size_t NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2) = 0;
    virtual void NotifyAcqStatisticUpdate(std::string key, bool flag) = 0;
    virtual void NotifyDeviceListUpdate(std::string listKey, std::string key) = 0;
    virtual void NotifyDeviceListUpdate() = 0;
    // The host may delete the camera inside this call (a lost GigE or USB camera).
    virtual void RemoveOpenedCamera(std::string key) = 0;
    virtual void AddCLCamera(Camera* camera) = 0;
    // Asks for a discovery pass over the given transport types after a camera changed its
    // address. A host that keeps no device list has nothing to rebuild, hence the default.
    virtual int RefreshDeviceList(int types);

protected:
    ~CameraHost() = default;
};

// The device manager's constructor registers itself, its destructor clears the registration.
void SetCameraHost(CameraHost* host);
// Null when no host is registered: the caller drops its notification (and releases an image).
CameraHost* GetCameraHost();
