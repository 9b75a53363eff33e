// Arbitrary bytes as "CameraParameters.ini" through the profile camera loader's round trip (FuzzIniRoundTrip),
// for two cameras: one with a fixed key, one keyed by the file's first section.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FuzzWorkspace.h"
#include "ViewerBiz3Types.h"
#include "camera/Camera.h"
#include "device/ProfileCameraSettings.h"

namespace {

constexpr uint16_t profileCameraKind = 1;
constexpr ViewerBiz3::CAM_INFO profileSettings[] = {ViewerBiz3::CAM_IMAGE_BITS,     ViewerBiz3::CAM_SAMPLING_RATIO,
                                                    ViewerBiz3::CAM_CONTOUR_SPACER, ViewerBiz3::CAM_REAL_COLOR,
                                                    ViewerBiz3::CAM_Z_UP_SIZE,      ViewerBiz3::CAM_Z_DOWN_SIZE};

// The settings both cameras hold after loading the file; they save it again when asked.
HeldValues LoadCameras(const SectionKeys& keys, bool save)
{
    std::vector<std::string> cameraKeys = {"Profile(F1)"};
    if (!keys.empty())
        cameraKeys.push_back(keys.front().first);
    std::vector<std::unique_ptr<Camera>> cameras;
    HeldValues held;
    for (const std::string& key : cameraKeys) {
        cameras.push_back(std::make_unique<Camera>(nullptr));
        cameras.back()->SetKind(profileCameraKind);
        cameras.back()->SetKey(key);
        cameras.back()->SetName(key);
        LoadProfileCameraSettings(cameras.back().get());
        for (ViewerBiz3::CAM_INFO info : profileSettings)
            held.push_back(cameras.back()->GetInfo(info));
    }
    for (std::size_t index = 0; save && index < cameras.size(); ++index)
        SaveProfileCameraSettings(cameras[index].get());
    return held;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    FuzzIniRoundTrip(
        "CameraParameters.ini", data, size, [](const std::string&) { return true; }, LoadCameras);
    return 0;
}
