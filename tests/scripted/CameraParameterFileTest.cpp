// The profile cameras' "CameraParameters.ini": what opening reads and closing writes.
#include <gtest/gtest.h>

#include <filesystem>

#include "camera/Camera.h"
#include "device/ProfileCameraSettings.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

const char* const utf8ByteOrderMark = "\xEF\xBB\xBF";

class CameraParameterFileTest : public ::testing::Test {
protected:
    TempDirectory directory;
    ApplicationDirectoryScope applicationDirectory{directory.Path()};
    std::string path = directory.File("CameraParameters.ini");

    static std::unique_ptr<Camera> CameraOfKind(uint16_t kind, const std::string& key)
    {
        auto camera = std::make_unique<Camera>(nullptr);
        camera->SetKind(kind);
        camera->SetKey(key);
        camera->SetName(key);
        return camera;
    }

    // What a camera that never read the file shows.
    static std::vector<std::string> FreshProfileFields() { return ProfileFields(*CameraOfKind(1, "Fresh(F0)")); }

    static std::vector<std::string> ProfileFields(Camera& camera)
    {
        std::vector<std::string> fields;
        for (ViewerBiz3::CAM_INFO info :
             {ViewerBiz3::CAM_IMAGE_BITS, ViewerBiz3::CAM_SAMPLING_RATIO, ViewerBiz3::CAM_CONTOUR_SPACER,
              ViewerBiz3::CAM_REAL_COLOR, ViewerBiz3::CAM_Z_UP_SIZE, ViewerBiz3::CAM_Z_DOWN_SIZE})
            fields.push_back(camera.GetInfo(info));
        return fields;
    }
};

TEST_F(CameraParameterFileTest, ProfileCameraReadsItsOwnSection)
{
    WriteTextFile(path, "[Other(F2)]\nimageBits=8\n\n[Profile(F1)]\nIMAGEBITS=12\nsamplingRatio=2\n"
                        "contourSpacer=0.01\nrealColor=1\nzupSizeInfo=NULL\nzdownSizeInfo=-4.5\n");
    auto camera = CameraOfKind(1, "Profile(F1)");
    camera->SetText(ViewerBiz3::CAM_Z_UP_SIZE, "9");

    LoadProfileCameraSettings(camera.get());

    // Keys match whatever their case; a stored "NULL" counts as absent.
    EXPECT_EQ(ProfileFields(*camera), (std::vector<std::string>{"12", "2", "0.01", "1", "9", "-4.5"}));
}

TEST_F(CameraParameterFileTest, ProfileCameraWithoutSectionKeepsItsDefaults)
{
    WriteTextFile(path, "[Other(F2)]\nimageBits=8\n");
    auto camera = CameraOfKind(1, "Profile(F1)");

    LoadProfileCameraSettings(camera.get());
    EXPECT_EQ(ProfileFields(*camera), FreshProfileFields());

    SaveProfileCameraSettings(camera.get());
    const std::string saved = ReadTextFile(path);
    EXPECT_EQ(saved.rfind(utf8ByteOrderMark, 0), 0u);
    EXPECT_NE(saved.find("[Other(F2)]"), std::string::npos);
    EXPECT_NE(saved.find("imageBits = 8"), std::string::npos);

    auto reloaded = CameraOfKind(1, "Profile(F1)");
    reloaded->SetText(ViewerBiz3::CAM_IMAGE_BITS, "changed");
    LoadProfileCameraSettings(reloaded.get());
    EXPECT_EQ(ProfileFields(*reloaded), FreshProfileFields());
}

TEST_F(CameraParameterFileTest, EachProfileCameraGetsItsSection)
{
    WriteTextFile(path, "");
    auto first = CameraOfKind(1, "Profile(F1)");
    auto second = CameraOfKind(1, "Profile(F2)");
    first->SetInfo(ViewerBiz3::CAM_IMAGE_BITS, "8");
    second->SetInfo(ViewerBiz3::CAM_Z_DOWN_SIZE, "-3");

    SaveProfileCameraSettings(first.get());
    SaveProfileCameraSettings(second.get());

    auto firstAgain = CameraOfKind(1, "Profile(F1)");
    auto secondAgain = CameraOfKind(1, "Profile(F2)");
    LoadProfileCameraSettings(firstAgain.get());
    LoadProfileCameraSettings(secondAgain.get());
    EXPECT_EQ(firstAgain->GetInfo(ViewerBiz3::CAM_IMAGE_BITS), "8");
    EXPECT_EQ(secondAgain->GetInfo(ViewerBiz3::CAM_IMAGE_BITS), FreshProfileFields()[0]);
    EXPECT_EQ(secondAgain->GetInfo(ViewerBiz3::CAM_Z_DOWN_SIZE), "-3");
}

TEST_F(CameraParameterFileTest, OtherCamerasNeverTouchTheFile)
{
    const std::string original = "[Area(S1)]\nimageBits=8\n";
    WriteTextFile(path, original);
    for (uint16_t kind : {0, 3, 4, 5}) {
        auto camera = CameraOfKind(kind, "Area(S1)");
        LoadProfileCameraSettings(camera.get());
        EXPECT_EQ(ProfileFields(*camera), FreshProfileFields());
        SaveProfileCameraSettings(camera.get());
    }
    EXPECT_EQ(ReadTextFile(path), original);
    LoadProfileCameraSettings(nullptr);
    SaveProfileCameraSettings(nullptr);
}

TEST_F(CameraParameterFileTest, MissingFileIsNeverCreated)
{
    auto camera = CameraOfKind(1, "Profile(F1)");
    LoadProfileCameraSettings(camera.get());
    SaveProfileCameraSettings(camera.get());

    EXPECT_EQ(ProfileFields(*camera), FreshProfileFields());
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
