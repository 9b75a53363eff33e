// Inputs the fuzz targets (tests/fuzz) found breaking the library, replayed
// through the same entries in the normal build.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "camera/Camera.h"
#include "device/ProfileCameraSettings.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

class FuzzRegressionTest : public ::testing::Test {
protected:
    TempDirectory directory;
    ApplicationDirectoryScope applicationDirectory{directory.Path()};

    // A profile camera that has loaded the settings file.
    static std::unique_ptr<Camera> LoadedProfileCamera(const std::string& key)
    {
        auto camera = std::make_unique<Camera>(nullptr);
        camera->SetKind(1);
        camera->SetKey(key);
        camera->SetName(key);
        LoadProfileCameraSettings(camera.get());
        return camera;
    }
};

} // namespace

// FuzzCameraParameterLoader: a header line without its "]" used to put the keys below it under a name running into the
// next line, and every save wrote that name back one line longer.
TEST_F(FuzzRegressionTest, UnterminatedCameraSectionHeaderNamesItsSectionAndStopsGrowingTheFile)
{
    const std::string path = directory.File("CameraParameters.ini");
    WriteTextFile(path,
                  "[Profile(F1)]\nimageBits = 8\n[Profile(F2)  \nimageBits = 12\n[LP-3000(Folor = 0\nkey = kept\n");
    EXPECT_EQ(LoadedProfileCamera("Profile(F2)")->GetInfo(ViewerBiz3::CAM_IMAGE_BITS), "12");
    auto camera = LoadedProfileCamera("Profile(F1)");
    EXPECT_EQ(camera->GetInfo(ViewerBiz3::CAM_IMAGE_BITS), "8");

    SaveProfileCameraSettings(camera.get());
    const std::string afterFirstSave = ReadTextFile(path);
    SaveProfileCameraSettings(camera.get());
    EXPECT_EQ(ReadTextFile(path), afterFirstSave) << "saving again changes nothing";
    EXPECT_NE(afterFirstSave.find("[LP-3000(Folor = 0]\nkey = kept\n"), std::string::npos) << afterFirstSave;
}
