// Arbitrary bytes as "CameraParameters.ini", loaded and saved for two profile
// cameras: one with a fixed key, one keyed by the file's first section. Nothing
// crashes; a file the loader cannot read is left byte for byte as it was;
// otherwise every section and key survives the save, and a camera loading the
// saved file gets back the settings the first one held.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FuzzExpect.h"
#include "FuzzWorkspace.h"
#include "ViewerBiz3Types.h"
#include "camera/Camera.h"
#include "device/ProfileCameraSettings.h"
#include "settings/IniFile.h"

namespace {

constexpr char fileName[] = "CameraParameters.ini";
constexpr uint16_t profileCameraKind = 1;
constexpr ViewerBiz3::CAM_INFO profileSettings[] = {ViewerBiz3::CAM_IMAGE_BITS,     ViewerBiz3::CAM_SAMPLING_RATIO,
                                                    ViewerBiz3::CAM_CONTOUR_SPACER, ViewerBiz3::CAM_REAL_COLOR,
                                                    ViewerBiz3::CAM_Z_UP_SIZE,      ViewerBiz3::CAM_Z_DOWN_SIZE};

using SectionKeys = std::vector<std::pair<std::string, std::string>>;

// Every (section, key) pair of the file; false when it cannot be loaded.
bool AllKeys(const std::string& path, SectionKeys& keys)
{
    return IniFile::Read(path, [&keys](const IniFile::Store& store) {
        IniFile::Store::TNamesDepend sections;
        store.GetAllSections(sections);
        for (const auto& section : sections) {
            IniFile::Store::TNamesDepend names;
            store.GetAllKeys(section.pItem, names);
            for (const auto& name : names)
                keys.emplace_back(section.pItem, name.pItem);
        }
    });
}

std::unique_ptr<Camera> ProfileCamera(const std::string& key)
{
    auto camera = std::make_unique<Camera>(nullptr);
    camera->SetKind(profileCameraKind);
    camera->SetKey(key);
    camera->SetName(key);
    return camera;
}

std::vector<std::string> Settings(Camera& camera)
{
    std::vector<std::string> values;
    for (ViewerBiz3::CAM_INFO info : profileSettings)
        values.push_back(camera.GetInfo(info));
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const FuzzWorkspace workspace;
    workspace.Write(fileName, data, size);
    const std::string path = workspace.File(fileName);
    SectionKeys keysBefore;
    const bool loadable = AllKeys(path, keysBefore);

    std::vector<std::unique_ptr<Camera>> cameras;
    cameras.push_back(ProfileCamera("Profile(F1)"));
    if (!keysBefore.empty())
        cameras.push_back(ProfileCamera(keysBefore.front().first));
    std::vector<std::vector<std::string>> held;
    for (auto& camera : cameras) {
        LoadProfileCameraSettings(camera.get());
        held.push_back(Settings(*camera));
    }
    for (auto& camera : cameras)
        SaveProfileCameraSettings(camera.get());

    if (!loadable) {
        FuzzExpect(workspace.Read(fileName) == std::string(reinterpret_cast<const char*>(data), size),
                   "a file the loader cannot read is left untouched");
        return 0;
    }
    const bool everyKeyKept = IniFile::Read(path, [&keysBefore](const IniFile::Store& store) {
        for (const auto& [section, key] : keysBefore)
            FuzzExpect(store.GetValue(section.c_str(), key.c_str(), nullptr) != nullptr,
                       "every section and key survives a save");
    });
    FuzzExpect(everyKeyKept, "the saved file can be read again");
    for (std::size_t index = 0; index < cameras.size(); ++index) {
        auto reloaded = ProfileCamera(cameras[index]->GetKey());
        LoadProfileCameraSettings(reloaded.get());
        FuzzExpect(Settings(*reloaded) == held[index], "a camera loading the saved file gets its settings back");
    }
    return 0;
}
