#include "support/scripted/ScriptedDescriptions.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace Scripted {

namespace {

DeviceDescription CameraWithFeatures(const std::string& serialNumber, const std::string& userDefinedName, int tlType,
                                     const std::string& modelName, const std::string& featureXml)
{
    DeviceDescription description;
    description.identity.tlType = tlType;
    description.identity.serialNumber = serialNumber;
    description.identity.modelName = modelName;
    description.identity.userDefinedName = userDefinedName;
    description.moduleXml[2] = AuxiliaryXml();
    description.moduleXml[3] = featureXml;
    return description;
}

} // namespace

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

std::string AreaCameraXml()
{
    return ReadTestData("scripted_area_camera.xml");
}

std::string ProfileCameraXml()
{
    return ReadTestData("scripted_profile_camera.xml");
}

std::string AuxiliaryXml()
{
    return ReadTestData("scripted_auxiliary.xml");
}

std::string CardXml()
{
    return ReadTestData("scripted_card.xml");
}

DeviceDescription AreaCamera(const std::string& serialNumber, const std::string& userDefinedName, int tlType)
{
    return CameraWithFeatures(serialNumber, userDefinedName, tlType, "Scripted-Area", AreaCameraXml());
}

DeviceDescription ProfileCamera(const std::string& serialNumber, const std::string& userDefinedName, int tlType)
{
    DeviceDescription description =
        CameraWithFeatures(serialNumber, userDefinedName, tlType, "Scripted-Profile", ProfileCameraXml());
    description.frames = FrameScript::Empty().Add(FrameStep::Frame(1, 3200, 1, PFNC_COORD3D_C16).Chunks({64, 6400}));
    return description;
}

DeviceDescription FrameGrabberCard(const std::string& cardKey)
{
    DeviceDescription description;
    description.role = DeviceRole::FrameGrabberCard;
    description.identity.tlType = ZYLGENICAM::TL_CAMERALINK;
    description.identity.serialNumber = cardKey;
    description.identity.modelName = "Scripted-Grabber";
    description.identity.clCardKey = cardKey;
    description.moduleXml[2] = CardXml();
    return description;
}

DeviceDescription CameraLinkCamera(const std::string& serialNumber, const std::string& cardKey,
                                   const std::string& protocol, const std::string& serialPort)
{
    DeviceDescription description =
        CameraWithFeatures(serialNumber, "", ZYLGENICAM::TL_CAMERALINK, "Scripted-CL", AreaCameraXml());
    description.identity.clCardKey = cardKey;
    description.identity.clProtocol = protocol;
    description.identity.clSerialPort = serialPort;
    description.moduleXml[2] = CardXml();
    return description;
}

} // namespace Scripted
