// The profile cameras' own settings in "CameraParameters.ini", one section per camera key.
#include <array>
#include <utility>

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
} // namespace

std::vector<ViewerBiz3::CAM_INFO> ParameterManager::CameraParameterFields()
{
    std::vector<ViewerBiz3::CAM_INFO> fields;
    for (const auto& entry : cameraParameterKeys)
        fields.push_back(entry.second);
    return fields;
}

ParameterManager::CameraParameters ParameterManager::loadCameraParameters(const std::string& section)
{
    CameraParameters values;
    IniFile::Read(CameraParameterPath(), [&](const IniFile::Store& store) {
        for (const auto& [key, info] : cameraParameterKeys) {
            const std::string value = store.GetValue(section.c_str(), key, absentValue);
            if (value != absentValue)
                values[info] = value;
        }
    });
    return values;
}

void ParameterManager::saveCameraParameters(const std::string& section, const CameraParameters& values)
{
    IniFile::Update(CameraParameterPath(), [&](IniFile::Store& store) {
        for (const auto& [key, info] : cameraParameterKeys) {
            auto value = values.find(info);
            store.SetValue(section.c_str(), key, value == values.end() ? "" : value->second.c_str());
        }
    });
}
