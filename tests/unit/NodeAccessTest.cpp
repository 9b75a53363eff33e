// Typed node access by name as the camera objects use it: text in, text out, fixed codes and messages.
#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
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
    std::string message = "before";

    int Get(const std::string& name) { return GetNodeValue(nodeMap.get(), name, value, message); }
    int Set(const std::string& name, const std::string& text)
    {
        return SetNodeValue(nodeMap.get(), name, text, message);
    }
    std::string Read(const std::string& name)
    {
        std::string text;
        std::string ignored;
        EXPECT_EQ(GetNodeValue(nodeMap.get(), name, text, ignored), 0) << name << ": " << ignored;
        return text;
    }
};

// A node map whose lookups or nodes fail in ways no GenICam document produces.
struct FailingNode : GenApi::INode {
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
    GenICam::gcstring GetName(bool) const override { return "Failing"; }
    GenApi::EInterfaceType GetPrincipalInterfaceType() const override { throw std::runtime_error("not GenICam"); }
    bool GetProperty(const GenICam::gcstring&, GenICam::gcstring&, GenICam::gcstring&) const override { return false; }
    GenICam::gcstring GetDisplayName() const override { return "Failing"; }
    GenICam::gcstring GetToolTip() const override { return ""; }
    GenICam::gcstring GetDescription() const override { return ""; }
    GenApi::EVisibility GetVisibility() const override { return GenApi::Beginner; }
    bool IsFeature() const override { return false; }
    void GetChildren(GenApi::NodeList_t&) const override {}
    GenApi::INodeMap* GetNodeMap() const override { return nullptr; }
    GenICam::gcstring GetDeviceName() const override { return "Failing"; }
};

struct FailingNodeMap : GenApi::INodeMap {
    mutable FailingNode node;
    GenApi::INode* GetNode(const GenICam::gcstring& name) const override
    {
        if (name == "Throw") {
            throw GenICam::RuntimeException("lookup failed");
        }
        return &node;
    }
    void GetNodes(GenApi::NodeList_t& nodes) const override { nodes.assign(1, &node); }
    GenICam::gcstring GetDeviceName() override { return "Failing"; }
};

} // namespace

TEST_F(NodeAccess, NullNodeMapIsRefusedBeforeTheNameIsLooked)
{
    std::string min = "m", max = "M", inc = "i";
    EXPECT_EQ(GetNodeValue(nullptr, "Width", value, message), -1);
    EXPECT_EQ(message, "Nodemap is NULL");
    message.clear();
    EXPECT_EQ(SetNodeValue(nullptr, "", "1", message), -1);
    EXPECT_EQ(message, "Nodemap is NULL");
    message.clear();
    EXPECT_EQ(GetIntNodeInfo(nullptr, "Width", value, min, max, inc, message), -1);
    EXPECT_EQ(message, "Nodemap is NULL");
    EXPECT_EQ(value + min + max + inc, "beforemMi");
}

TEST_F(NodeAccess, UnknownEmptyAndOverlongNamesDoNotExist)
{
    std::string min, max, inc;
    for (const std::string& name : {std::string("NoSuchNode"), std::string(), std::string(65536, 'N')}) {
        message.clear();
        EXPECT_EQ(Get(name), -4);
        EXPECT_EQ(message, "Node does not exist");
        message.clear();
        EXPECT_EQ(Set(name, "1"), -4);
        EXPECT_EQ(message, "Node does not exist");
        message.clear();
        EXPECT_EQ(GetIntNodeInfo(nodeMap.get(), name, value, min, max, inc, message), -4);
        EXPECT_EQ(message, "Node does not exist");
    }
    EXPECT_EQ(value, "before");
}

TEST_F(NodeAccess, ReadsEveryValueTypeAsText)
{
    EXPECT_EQ(Read("Width"), "640");
    EXPECT_EQ(Read("ReverseX"), "False");
    EXPECT_EQ(Read("Gain"), "0.500000");
    EXPECT_EQ(Read("ExposureTime"), "10000.000000");
    EXPECT_EQ(Read("DeviceUserID"), "Camera One");
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
    EXPECT_EQ(Read("SensorWidth"), "2048");
    EXPECT_EQ(Read("AvailableFeature"), "11");
    EXPECT_EQ(Read("LockedFeature"), "14");
    // The representation changes only the GenApi interface's ToString: these stay decimal.
    EXPECT_EQ(Read("FirmwareChecksum"), "48879");
    EXPECT_EQ(Read("PersistentIP"), "3232235796");
    // 1.23456789012345678e17 needs more than the 23 characters the formatter keeps.
    EXPECT_EQ(Read("Gamma"), "123456789012345680.0000");
    EXPECT_EQ(message, "before");
}

TEST_F(NodeAccess, ReadsOfNodesWithoutAValueAreUnsupported)
{
    for (const char* name : {"AcquisitionStart", "Root", "LutTable", "Device", "EnumEntry_PixelFormat_Mono8"}) {
        message.clear();
        EXPECT_EQ(Get(name), -6) << name;
        EXPECT_EQ(message, "Unsupported type") << name;
    }
    EXPECT_EQ(value, "before");
}

TEST_F(NodeAccess, UnreadableNodesGiveMinusFive)
{
    for (const char* name : {"DeviceKey", "UnimplementedFeature", "FloatAvailabilityFeature"}) {
        message.clear();
        EXPECT_EQ(Get(name), -5) << name;
        EXPECT_EQ(message, "Node unreadable") << name;
    }
    EXPECT_EQ(value, "before");
}

TEST_F(NodeAccess, FailedAvailabilityTestGivesMinusNine)
{
    EXPECT_EQ(Get("UnavailableFeature"), -9);
    EXPECT_EQ(message, "Get pIsAvailable failed!");
    message.clear();
    EXPECT_EQ(Get("DanglingFeature"), -9);
    EXPECT_EQ(message, "Get pIsAvailable failed!");
    // The availability register cannot be read without a device: its exception text is the message.
    EXPECT_EQ(Get("DeviceBoundFeature"), -9);
    EXPECT_NE(message.find("No device set"), std::string::npos) << message;
    EXPECT_EQ(value, "before");

    // Writes make no availability test; the node is then simply not writable.
    message.clear();
    EXPECT_EQ(Set("UnavailableFeature", "3"), -5);
    EXPECT_EQ(message, "Node unwritable");
}

TEST_F(NodeAccess, GenICamExceptionsBecomeMinusSevenWithTheirDescription)
{
    EXPECT_EQ(Get("DeviceTemperatureRaw"), -7);
    EXPECT_NE(message.find("No device set"), std::string::npos) << message;
    EXPECT_EQ(Set("Width", "2000"), -7);
    EXPECT_NE(message.find("Max = 1024"), std::string::npos) << message;
    EXPECT_EQ(Set("Width", "20"), -7);
    EXPECT_NE(message.find("Inc = 8"), std::string::npos) << message;
    EXPECT_EQ(Set("Width", "not a number"), -7) << "atoi gives 0, below Min";
    EXPECT_EQ(Set("PixelFormat", "Bayer"), -7);
    EXPECT_EQ(Set("PixelFormat", "Mono12"), -7) << "entry not available";
    EXPECT_EQ(Read("Width"), "640");
    EXPECT_EQ(Read("PixelFormat"), "Mono8");
}

TEST_F(NodeAccess, OtherExceptionsAreMinusEightAndLookupExceptionsPropagate)
{
    FailingNodeMap failing;
    std::string min, max, inc;
    EXPECT_EQ(GetNodeValue(&failing, "Any", value, message), -8);
    EXPECT_EQ(SetNodeValue(&failing, "Any", "1", message), -8);
    EXPECT_EQ(GetIntNodeInfo(&failing, "Any", value, min, max, inc, message), -8);
    EXPECT_EQ(message, "before");
    EXPECT_THROW(GetNodeValue(&failing, "Throw", value, message), GenICam::RuntimeException);
    EXPECT_THROW(SetNodeValue(&failing, "Throw", "1", message), GenICam::RuntimeException);
    EXPECT_THROW(GetIntNodeInfo(&failing, "Throw", value, min, max, inc, message), GenICam::RuntimeException);
}

TEST_F(NodeAccess, WritesConvertTextTheWayTheCameraCodeAlwaysHas)
{
    EXPECT_EQ(Set("Width", "512"), 0);
    EXPECT_EQ(Read("Width"), "512");
    EXPECT_EQ(Set("Width", "  264 pixels"), 0);
    EXPECT_EQ(Read("Width"), "264");

    EXPECT_EQ(Set("Height", "3000000000"), 0);
    EXPECT_EQ(Read("Height"), std::to_string(static_cast<int64_t>(std::atoi("3000000000"))));

    EXPECT_EQ(Set("ReverseX", "1"), 0);
    EXPECT_EQ(Read("ReverseX"), "True");
    EXPECT_EQ(Set("ReverseX", "True"), 0);
    EXPECT_EQ(Read("ReverseX"), "False");

    EXPECT_EQ(Set("Gain", "12.5"), 0);
    EXPECT_EQ(Read("Gain"), "12.500000");
    EXPECT_EQ(Set("ExposureTime", "1e3"), 0);
    EXPECT_EQ(Read("ExposureTime"), "1000.000000");
    EXPECT_EQ(Set("BlackLevel", "0.3"), 0) << "a float's increment is not enforced";
    EXPECT_EQ(Read("BlackLevel"), "0.300000");

    const std::string longText(100000, 'u');
    EXPECT_EQ(Set("DeviceUserID", longText), 0);
    EXPECT_EQ(Read("DeviceUserID"), longText);

    EXPECT_EQ(Set("PixelFormat", "Mono16"), 0);
    EXPECT_EQ(Read("PixelFormat"), "Mono16");
    EXPECT_EQ(message, "before");
}

TEST_F(NodeAccess, UnwritableNodesGiveMinusFive)
{
    for (const char* name : {"SensorWidth", "DeviceModelName", "LockedFeature", "UnimplementedFeature"}) {
        message.clear();
        EXPECT_EQ(Set(name, "1"), -5) << name;
        EXPECT_EQ(message, "Node unwritable") << name;
    }
    EXPECT_EQ(Read("SensorWidth"), "2048");
    EXPECT_EQ(Read("DeviceModelName"), "VB3-Test-Model");

    // A read-only enumeration leaves the caller's message as it was.
    message = "stale";
    EXPECT_EQ(Set("AcquisitionMode", "SingleFrame"), -5);
    EXPECT_EQ(message, "stale");
    EXPECT_EQ(Read("AcquisitionMode"), "Continuous");
}

TEST_F(NodeAccess, WritesToNodesWithoutAValueAreUnsupported)
{
    for (const char* name : {"Root", "LutTable", "Device", "EnumEntry_PixelFormat_Mono8"}) {
        message.clear();
        EXPECT_EQ(Set(name, "1"), -6) << name;
        EXPECT_EQ(message, "Unsupported type") << name;
    }
}

TEST_F(NodeAccess, IntegerInfoGivesValueAndRange)
{
    std::string min = "m", max = "M", inc = "i";
    EXPECT_EQ(GetIntNodeInfo(nodeMap.get(), "Width", value, min, max, inc, message), 0);
    EXPECT_EQ(value, "640");
    EXPECT_EQ(min, "16");
    EXPECT_EQ(max, "1024");
    EXPECT_EQ(inc, "8");
    EXPECT_EQ(message, "before");

    value = "v", min = "m", max = "M", inc = "i";
    EXPECT_EQ(GetIntNodeInfo(nodeMap.get(), "Gain", value, min, max, inc, message), -6);
    EXPECT_EQ(message, "Unsupported type");
    EXPECT_EQ(GetIntNodeInfo(nodeMap.get(), "PixelFormat", value, min, max, inc, message), -6);
    EXPECT_EQ(GetIntNodeInfo(nodeMap.get(), "DeviceKey", value, min, max, inc, message), -5);
    EXPECT_EQ(message, "Node unreadable");
    EXPECT_EQ(GetIntNodeInfo(nodeMap.get(), "DeviceTemperatureRaw", value, min, max, inc, message), -7);
    EXPECT_EQ(value + min + max + inc, "vmMi");
}
