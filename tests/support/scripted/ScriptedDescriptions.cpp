#include "support/scripted/ScriptedDescriptions.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace Scripted {

namespace {

// What sets one kind of device apart.
struct DeviceKind {
    DeviceRole role;
    const char* modelName;
    const char* module2File;
    const char* module3File; // null: no feature node map
    FrameScript frames;
};

const DeviceKind kAreaCamera{DeviceRole::Camera, "Scripted-Area", "scripted_auxiliary.xml", "scripted_area_camera.xml",
                             FrameScript()};
const DeviceKind kProfileCamera{
    DeviceRole::Camera, "Scripted-Profile", "scripted_auxiliary.xml", "scripted_profile_camera.xml",
    FrameScript::Empty().Add(FrameStep::Frame(1, 3200, 1, PFNC_COORD3D_C16).Chunks({64, 6400}))};
const DeviceKind kFrameGrabberCard{DeviceRole::FrameGrabberCard, "Scripted-Grabber", "scripted_card.xml", nullptr,
                                   FrameScript()};
const DeviceKind kCameraLinkCamera{DeviceRole::Camera, "Scripted-CL", "scripted_card.xml", "scripted_area_camera.xml",
                                   FrameScript()};

// Text of a file in tests/data (fails the test and returns "" when it cannot be read).
std::string ReadTestData(const std::string& fileName)
{
    const std::string path = std::string(VB3_TEST_DATA_DIR) + "/" + fileName;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        ADD_FAILURE() << "cannot read test data " << path;
        return "";
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

DeviceDescription Describe(const DeviceKind& kind, const std::string& serialNumber, const std::string& userDefinedName,
                           int tlType, const std::string& cardKey = "", const std::string& protocol = "",
                           const std::string& serialPort = "")
{
    DeviceDescription description;
    description.role = kind.role;
    description.identity.tlType = tlType;
    description.identity.serialNumber = serialNumber;
    description.identity.modelName = kind.modelName;
    description.identity.userDefinedName = userDefinedName;
    description.identity.clCardKey = cardKey;
    description.identity.clProtocol = protocol;
    description.identity.clSerialPort = serialPort;
    description.moduleXml[2] = ReadTestData(kind.module2File);
    if (kind.module3File != nullptr) {
        description.moduleXml[3] = ReadTestData(kind.module3File);
    }
    description.frames = kind.frames;
    return description;
}

} // namespace

std::string ProfileCameraXml()
{
    return ReadTestData(kProfileCamera.module3File);
}

DeviceDescription AreaCamera(const std::string& serialNumber, const std::string& userDefinedName, int tlType)
{
    return Describe(kAreaCamera, serialNumber, userDefinedName, tlType);
}

DeviceDescription ProfileCamera(const std::string& serialNumber, const std::string& userDefinedName, int tlType)
{
    return Describe(kProfileCamera, serialNumber, userDefinedName, tlType);
}

DeviceDescription FrameGrabberCard(const std::string& cardKey)
{
    return Describe(kFrameGrabberCard, cardKey, "", ZYLGENICAM::TL_CAMERALINK, cardKey);
}

DeviceDescription CameraLinkCamera(const std::string& serialNumber, const std::string& cardKey,
                                   const std::string& protocol, const std::string& serialPort)
{
    return Describe(kCameraLinkCamera, serialNumber, "", ZYLGENICAM::TL_CAMERALINK, cardKey, protocol, serialPort);
}

} // namespace Scripted
