#include "camera/CameraHost.h"

#include <atomic>

namespace {
std::atomic<CameraHost*> registeredHost{nullptr};
}

int CameraHost::RefreshDeviceList(int)
{
    return 0;
}

void SetCameraHost(CameraHost* host)
{
    registeredHost.store(host);
}

CameraHost* GetCameraHost()
{
    return registeredHost.load();
}
