#include "device/DeviceIdentity.h"

#include "camera/Camera.h"

namespace {

constexpr std::size_t DEVICE_TEXT_LENGTH = 32;

} // namespace

std::string SdkText(const char* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

std::string CameraIdentifier(ZYLGENICAM::ICameraInfo* info)
{
    std::string name = SdkText(info->GetUserDefinedName());
    if (name.empty())
        name = SdkText(info->GetModelName());
    return name + "(" + SdkText(info->GetSerialNumber()) + ")";
}

bool IsAccessible(ZYLGENICAM::ICameraInfo* info)
{
    int status = info->GetAccessStatus();
    return status != 0 && status != 1;
}

void FillRecordTexts(Camera& camera, ZYLGENICAM::ICameraInfo* info)
{
    camera.SetText(ViewerBiz3::CAM_MODEL_NAME, SdkText(info->GetModelName()));
    camera.SetText(ViewerBiz3::CAM_DEVICE_TEXT, SdkText(info->GetDeviceText()).substr(0, DEVICE_TEXT_LENGTH));
    camera.SetText(ViewerBiz3::CAM_DEVICE_TEXT2, SdkText(info->GetDeviceText2()));
    camera.SetText(ViewerBiz3::CAM_SERIAL, SdkText(info->GetSerialNumber()));
    camera.SetAvailable(IsAccessible(info));
}
