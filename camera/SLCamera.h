// A show-mode camera: keeps the presentation mode the host chose for it, and sizes its
// frames from their chunks instead of from the pixel format.
#pragma once

#include <atomic>

#include "camera/Camera.h"

class SLCamera : public Camera {
public:
    explicit SLCamera(ZYLGENICAM::ICamera* camera);
    ~SLCamera() override;

    void GrabImageFunction() override;

    // Any integer is accepted; its meaning belongs to the host.
    int SetCameraShowMode(int mode);
    int GetCameraShowMode() const;

private:
    std::atomic<int> m_showMode{0};
};
