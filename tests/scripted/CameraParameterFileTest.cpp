// The profile cameras' "CameraParameters.ini": what opening reads and closing writes.
#include <gtest/gtest.h>

#include <filesystem>

#include "camera/Camera.h"
#include "device/ProfileCameraSettings.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"

namespace {

class CameraParameterFileTest : public ::testing::Test {
protected:
    TempDirectory directory;
    ApplicationDirectoryScope applicationDirectory{directory.Path()};
    std::string path = directory.File("CameraParameters.ini");

    // The profile fields of a camera of this kind after it read the file.
    static std::vector<std::string> LoadedFields(const std::string& key, uint16_t kind = 1)
    {
        Camera camera(nullptr);
        camera.SetKind(kind);
        camera.SetKey(key);
        LoadProfileCameraSettings(&camera);
        std::vector<std::string> fields;
        for (ViewerBiz3::CAM_INFO info :
             {ViewerBiz3::CAM_IMAGE_BITS, ViewerBiz3::CAM_SAMPLING_RATIO, ViewerBiz3::CAM_CONTOUR_SPACER,
              ViewerBiz3::CAM_REAL_COLOR, ViewerBiz3::CAM_Z_UP_SIZE, ViewerBiz3::CAM_Z_DOWN_SIZE})
            fields.push_back(camera.GetInfo(info));
        return fields;
    }

    // Saves the camera of this kind with one field set.
    static void Save(const std::string& key, ViewerBiz3::CAM_INFO info, const std::string& value, uint16_t kind = 1)
    {
        Camera camera(nullptr);
        camera.SetKind(kind);
        camera.SetKey(key);
        camera.SetText(info, value);
        SaveProfileCameraSettings(&camera);
    }

    // What a camera that never read the file shows.
    std::vector<std::string> freshFields = LoadedFields("Fresh(F0)", 0);
};

TEST_F(CameraParameterFileTest, EachProfileCameraReadsAndSavesItsOwnSection)
{
    // Keys match whatever their case; a stored "NULL" counts as absent.
    WriteTextFile(path, "[Other(F2)]\nimageBits=8\n\n[Profile(F1)]\nIMAGEBITS=12\nsamplingRatio=2\n"
                        "contourSpacer=0.01\nrealColor=1\nzupSizeInfo=NULL\nzdownSizeInfo=-4.5\n");
    const std::vector<std::string> expected = {"12", "2", "0.01", "1", freshFields[4], "-4.5"};
    EXPECT_EQ(LoadedFields("Profile(F1)"), expected);
    EXPECT_EQ(LoadedFields("Profile(F3)"), freshFields);

    Save("Profile(F3)", ViewerBiz3::CAM_Z_DOWN_SIZE, "-3");
    EXPECT_EQ(ReadTextFile(path).rfind("\xEF\xBB\xBF", 0), 0u) << "starts with a UTF-8 byte order mark";
    EXPECT_EQ(LoadedFields("Other(F2)")[0], "8");
    EXPECT_EQ(LoadedFields("Profile(F1)"), expected);
    EXPECT_EQ(LoadedFields("Profile(F3)")[0], freshFields[0]);
    EXPECT_EQ(LoadedFields("Profile(F3)")[5], "-3");
}

TEST_F(CameraParameterFileTest, OtherCamerasNeverTouchTheFileAndAMissingFileIsNeverCreated)
{
    const std::string original = "[Area(S1)]\nimageBits=8\n";
    WriteTextFile(path, original);
    for (uint16_t kind : {0, 3, 4, 5}) {
        EXPECT_EQ(LoadedFields("Area(S1)", kind), freshFields);
        Save("Area(S1)", ViewerBiz3::CAM_IMAGE_BITS, "10", kind);
    }
    EXPECT_EQ(ReadTextFile(path), original);
    LoadProfileCameraSettings(nullptr);
    SaveProfileCameraSettings(nullptr);

    std::filesystem::remove(path);
    Save("Profile(F1)", ViewerBiz3::CAM_IMAGE_BITS, "10");
    EXPECT_EQ(LoadedFields("Profile(F1)"), freshFields);
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
