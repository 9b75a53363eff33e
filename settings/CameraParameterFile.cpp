// The profile cameras' own settings in "CameraParameters.ini", one section per camera key.
#include <array>
#include <utility>

#include "camera/Camera.h"
#include "log/Log.h"
#include "settings/IniFile.h"
#include "settings/ParameterManager.h"

namespace {
// What a missing key reads as; a stored "NULL" therefore also counts as absent.
const char* const absentValue = "NULL";

const std::array<std::pair<const char*, ViewerBiz3::CAM_INFO>, 6> cameraParameterKeys = {{
    {"imageBits", ViewerBiz3::CAM_IMAGE_BITS},
    {"samplingRatio", ViewerBiz3::CAM_SAMPLING_RATIO},
    {"contourSpacer", ViewerBiz3::CAM_CONTOUR_SPACER},
    {"realColor", ViewerBiz3::CAM_REAL_COLOR},
    {"zupSizeInfo", ViewerBiz3::CAM_Z_UP_SIZE},
    {"zdownSizeInfo", ViewerBiz3::CAM_Z_DOWN_SIZE},
}};

std::string CameraParameterPath()
{
    return Utilities::ApplicationDirectory() + "/CameraParameters.ini";
}

bool HasParameterFile(Camera* camera)
{
    return camera && camera->IsKind(CameraKind::Profile);
}
} // namespace

void ParameterManager::loadCameraParameters(Camera* camera)
{
    if (!HasParameterFile(camera))
        return;
    const std::string section = camera->GetKey();
    IniFile::Read(CameraParameterPath(), [&](const IniFile::Store& store) {
        for (const auto& [key, info] : cameraParameterKeys) {
            const std::string value = store.GetValue(section.c_str(), key, absentValue);
            if (value != absentValue)
                camera->SetText(info, value);
        }
    });
}

void ParameterManager::saveCameraParameters(Camera* camera)
{
    if (!HasParameterFile(camera))
        return;
    const std::string section = camera->GetKey();
    IniFile::Update(CameraParameterPath(), [&](IniFile::Store& store) {
        for (const auto& [key, info] : cameraParameterKeys)
            store.SetValue(section.c_str(), key, camera->GetInfo(info).c_str());
    });
}
