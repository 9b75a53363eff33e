#include "device/ProfileCameraSettings.h"

#include "camera/Camera.h"
#include "settings/ParameterManager.h"

namespace {

bool HasParameterFile(Camera* camera)
{
    return camera != nullptr && camera->IsKind(CameraKind::Profile);
}

} // namespace

void LoadProfileCameraSettings(Camera* camera)
{
    if (!HasParameterFile(camera))
        return;
    for (const auto& [info, value] : m_parameterManager.loadCameraParameters(camera->GetKey()))
        camera->SetText(info, value);
}

void SaveProfileCameraSettings(Camera* camera)
{
    if (!HasParameterFile(camera))
        return;
    ParameterManager::CameraParameters values;
    for (ViewerBiz3::CAM_INFO info : ParameterManager::CameraParameterFields())
        values[info] = camera->GetInfo(info);
    m_parameterManager.saveCameraParameters(camera->GetKey(), values);
}
