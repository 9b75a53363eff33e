// Inputs the fuzz targets (tests/fuzz) found breaking the library, replayed
// through the same entries in the normal build.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "camera/Camera.h"
#include "device/ProfileCameraSettings.h"
#include "settings/ParameterManager.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

class FuzzRegressionTest : public ::testing::Test {
protected:
    TempDirectory directory;
    ApplicationDirectoryScope applicationDirectory{directory.Path()};

    static std::unique_ptr<Camera> ProfileCamera(const std::string& key)
    {
        auto camera = std::make_unique<Camera>(nullptr);
        camera->SetKind(1);
        camera->SetKey(key);
        camera->SetName(key);
        return camera;
    }

    // What a profile camera opened after the file was written would read.
    static std::string ImageBitsOf(const std::string& key)
    {
        auto camera = ProfileCamera(key);
        LoadProfileCameraSettings(camera.get());
        return camera->GetInfo(ViewerBiz3::CAM_IMAGE_BITS);
    }
};

} // namespace

// FuzzCameraParameterLoader: a header line without its "]" used to put the
// keys below it under a name running into the next line, and every save wrote
// that name back one line longer.
TEST_F(FuzzRegressionTest, UnterminatedCameraSectionHeaderNamesItsSectionAndStopsGrowingTheFile)
{
    const std::string path = directory.File("CameraParameters.ini");
    WriteTextFile(path, "[LP-3000(Folor = 0\nurknownKey = kept\n");
    auto camera = ProfileCamera("Profile(F1)");
    LoadProfileCameraSettings(camera.get());

    SaveProfileCameraSettings(camera.get());
    const std::string afterFirstSave = ReadTextFile(path);
    SaveProfileCameraSettings(camera.get());

    EXPECT_EQ(ReadTextFile(path), afterFirstSave) << "saving again changes nothing";
    EXPECT_NE(afterFirstSave.find("[LP-3000(Folor = 0]\nurknownKey = kept\n"), std::string::npos) << afterFirstSave;
}

TEST_F(FuzzRegressionTest, CameraUnderAnUnterminatedHeaderGetsItsOwnSettingsNotItsNeighbours)
{
    WriteTextFile(directory.File("CameraParameters.ini"),
                  "[Profile(F1)]\nimageBits = 8\n[Profile(F2)  \nimageBits = 12\n");
    EXPECT_EQ(ImageBitsOf("Profile(F1)"), "8");
    EXPECT_EQ(ImageBitsOf("Profile(F2)"), "12");
}

TEST_F(FuzzRegressionTest, SettingsUnderAnUnterminatedUserHeaderAreRead)
{
    WriteTextFile(directory.File("Configuration.ini"), "\xEF\xBB\xBF[User\r\nLayout = 3\r\nLanguage = Chinese\r\n");
    m_parameterManager.loadIniFile();
    EXPECT_EQ(m_parameterManager.GetLayoutType(), 3);
    EXPECT_EQ(m_parameterManager.GetLanguage(), "Chinese");

    m_parameterManager.saveIniFile();
    EXPECT_NE(ReadTextFile(directory.File("Configuration.ini")).find("[User]"), std::string::npos);
}
