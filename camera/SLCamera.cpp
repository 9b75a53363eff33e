#include "camera/SLCamera.h"

namespace {
uint64_t PayloadFromChunks(ZYLGENICAM::IImage* image)
{
    uint64_t bytes = 0;
    for (ZYLGENICAM::IChunk* chunk : image->GetChunkList()) {
        if (chunk)
            bytes += chunk->GetChunkSize();
    }
    return bytes;
}
} // namespace

SLCamera::SLCamera(ZYLGENICAM::ICamera* camera) : Camera(camera) {}

SLCamera::~SLCamera()
{
    ShutDownForDestruction();
}

void SLCamera::GrabImageFunction()
{
    // Show-mode devices number their frames in their own way, so continuity is not checked.
    RunGrabLoop({false, &PayloadFromChunks});
}

int SLCamera::SetCameraShowMode(int mode)
{
    m_showMode.store(mode);
    return 0;
}

int SLCamera::GetCameraShowMode() const
{
    return m_showMode.load();
}
