// Typed node access by name as the camera objects use it: text in, text out, fixed codes and messages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"
#include "support/common/TextFile.h"

using Utilities::GetIntNodeInfo;
using Utilities::GetNodeValue;
using Utilities::SetNodeValue;

namespace {

class NodeAccess : public ::testing::Test {
protected:
    std::unique_ptr<GenApi::INodeMap> nodeMap = GenApi::CreateNodeMapFromXml(
        ReadTextFile(std::string(VB3_TEST_DATA_DIR) + "/genapi_features.xml"), "NodeAccessDevice");
    std::string value = "before";
    std::string min = "m", max = "M", inc = "i";
    std::string message = "before";

    int Get(const std::string& name) { return GetNodeValue(nodeMap.get(), name, value, message); }
    int Set(const std::string& name, const std::string& text)
    {
        return SetNodeValue(nodeMap.get(), name, text, message);
    }
    int IntInfo(const std::string& name) { return GetIntNodeInfo(nodeMap.get(), name, value, min, max, inc, message); }
    std::string Read(const std::string& name)
    {
        std::string text, ignored;
        EXPECT_EQ(GetNodeValue(nodeMap.get(), name, text, ignored), 0) << name << ": " << ignored;
        return text;
    }
    // Each call of the family fails the same way and leaves the caller's outputs alone.
    void ExpectEveryCallFails(GenApi::INodeMap* map, const std::string& name, int code, const std::string& text)
    {
        std::string messages[3];
        EXPECT_EQ(GetNodeValue(map, name, value, messages[0]), code) << name;
        EXPECT_EQ(SetNodeValue(map, name, "1", messages[1]), code) << name;
        EXPECT_EQ(GetIntNodeInfo(map, name, value, min, max, inc, messages[2]), code) << name;
        EXPECT_THAT(messages, ::testing::Each(text)) << name;
        EXPECT_EQ(value + min + max + inc, "beforemMi") << name;
    }
};

} // namespace

TEST_F(NodeAccess, NullNodeMapAndUnknownEmptyOrOverlongNamesAreRefused)
{
    ExpectEveryCallFails(nullptr, "Width", -1, "Nodemap is NULL");
    for (const std::string& name : {std::string("NoSuchNode"), std::string(), std::string(65536, 'N')}) {
        ExpectEveryCallFails(nodeMap.get(), name, -4, "Node does not exist");
    }
}

TEST_F(NodeAccess, ReadsEveryValueTypeAsText)
{
    EXPECT_EQ(Read("Width"), "640");
    EXPECT_EQ(Read("ReverseX"), "False");
    EXPECT_EQ(Read("Gain"), "0.500000");
    EXPECT_EQ(Read("DeviceUserID"), "Camera One");
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
    // The representation changes only the GenApi interface's ToString: these stay decimal.
    EXPECT_EQ(Read("FirmwareChecksum"), "48879");
    EXPECT_EQ(Read("PersistentIP"), "3232235796");
    // 1.23456789012345678e17 needs more than the 23 characters the formatter keeps.
    EXPECT_EQ(Read("Gamma"), "123456789012345680.0000");
}

TEST_F(NodeAccess, NodesWithoutAValueAreUnsupportedAndInaccessibleOnesGiveMinusFive)
{
    for (const char* name : {"Root", "LutTable", "EnumEntry_PixelFormat_Mono8"}) {
        EXPECT_EQ(Get(name), -6) << name;
        EXPECT_EQ(Set(name, "1"), -6) << name;
        EXPECT_EQ(message, "Unsupported type") << name;
    }
    EXPECT_EQ(Get("DeviceKey"), -5);
    EXPECT_EQ(Get("FloatAvailabilityFeature"), -5);
    EXPECT_EQ(message, "Node unreadable");
    EXPECT_EQ(Set("LockedFeature", "1"), -5);
    EXPECT_EQ(Set("UnimplementedFeature", "1"), -5);
    EXPECT_EQ(message, "Node unwritable");
    EXPECT_EQ(value, "before");
    EXPECT_EQ(Read("LockedFeature"), "14");

    // A read-only enumeration leaves the caller's message as it was.
    message = "stale";
    EXPECT_EQ(Set("AcquisitionMode", "SingleFrame"), -5);
    EXPECT_EQ(message, "stale");
}

TEST_F(NodeAccess, FailedAvailabilityTestGivesMinusNine)
{
    EXPECT_EQ(Get("UnavailableFeature"), -9);
    EXPECT_EQ(message, "Get pIsAvailable failed!");
    // The availability register cannot be read without a device: its exception text is the message.
    EXPECT_EQ(Get("DeviceBoundFeature"), -9);
    EXPECT_NE(message.find("No device set"), std::string::npos) << message;
    EXPECT_EQ(value, "before");

    // Writes make no availability test; the node is then simply not writable.
    EXPECT_EQ(Set("UnavailableFeature", "3"), -5);
}

TEST_F(NodeAccess, GenICamExceptionsBecomeMinusSevenWithTheirDescription)
{
    EXPECT_EQ(Get("DeviceTemperatureRaw"), -7);
    EXPECT_NE(message.find("No device set"), std::string::npos) << message;
    EXPECT_EQ(Set("Width", "2000"), -7);
    EXPECT_NE(message.find("Max = 1024"), std::string::npos) << message;
    EXPECT_EQ(Set("PixelFormat", "Mono12"), -7) << "entry not available";
    EXPECT_EQ(Read("Width"), "640");
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
}

TEST_F(NodeAccess, WritesConvertTextTheWayTheCameraCodeAlwaysHas)
{
    EXPECT_EQ(Set("Width", "  264 pixels"), 0);
    EXPECT_EQ(Read("Width"), "264");
    EXPECT_EQ(Set("Height", "3000000000"), 0);
    EXPECT_EQ(Read("Height"), std::to_string(static_cast<int64_t>(std::atoi("3000000000"))));

    EXPECT_EQ(Set("ReverseX", "1"), 0);
    EXPECT_EQ(Read("ReverseX"), "True");
    EXPECT_EQ(Set("ReverseX", "True"), 0);
    EXPECT_EQ(Read("ReverseX"), "False");

    EXPECT_EQ(Set("ExposureTime", "1e3"), 0);
    EXPECT_EQ(Read("ExposureTime"), "1000.000000");
    EXPECT_EQ(Set("BlackLevel", "0.3"), 0) << "a float's increment is not enforced";
    EXPECT_EQ(Read("BlackLevel"), "0.300000");
    EXPECT_EQ(Set("PixelFormat", "Mono16"), 0);
    EXPECT_EQ(Read("PixelFormat"), "Mono16");
    EXPECT_EQ(message, "before");
}

TEST_F(NodeAccess, IntegerInfoGivesValueAndRange)
{
    EXPECT_EQ(IntInfo("Width"), 0);
    EXPECT_EQ(value + " " + min + " " + max + " " + inc, "640 16 1024 8");
    EXPECT_EQ(message, "before");

    value = "v", min = "m", max = "M", inc = "i";
    EXPECT_EQ(IntInfo("Gain"), -6);
    EXPECT_EQ(IntInfo("DeviceKey"), -5);
    EXPECT_EQ(IntInfo("DeviceTemperatureRaw"), -7);
    EXPECT_EQ(value + min + max + inc, "vmMi");
}
