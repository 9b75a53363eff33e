// The node map of Aravis's own in-process fake camera, a description we did not write, walked the
// way the host builds its property tree and written through to the device.
#include <gtest/gtest.h>

#include <arv.h>

#include <map>
#include <string>
#include <vector>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"

using namespace GenApi;

namespace {

class SimulatedNodeMap : public ::testing::Test {
protected:
    void SetUp() override
    {
        GError* error = nullptr;
        device = arv_fake_device_new("VB3-GENAPI-01", &error);
        ASSERT_NE(device, nullptr) << (error != nullptr ? error->message : "");
        nodeMap = CreateNodeMapForDevice(device);
    }
    void TearDown() override
    {
        nodeMap.reset();
        if (device != nullptr) {
            g_object_unref(device);
        }
    }

    // Every feature under the category, by name, with the category that lists it.
    void Walk(const std::string& categoryName, std::map<std::string, std::string>& categories)
    {
        CCategoryPtr category = nodeMap->GetNode(categoryName.c_str());
        ASSERT_TRUE(category.IsValid()) << categoryName;
        FeatureList_t features;
        category->GetFeatures(features);
        for (IValue* feature : features) {
            INode* node = feature->GetNode();
            if (node->GetPrincipalInterfaceType() == intfICategory) {
                Walk(node->GetName(), categories);
            } else {
                categories[node->GetName()] = categoryName;
            }
        }
    }

    ArvDevice* device = nullptr;
    std::unique_ptr<INodeMap> nodeMap;
};

} // namespace

TEST_F(SimulatedNodeMap, HostWalkReadsEveryFeatureWithItsRange)
{
    std::map<std::string, std::string> categories;
    Walk("Root", categories);
    for (const auto& [name, category] : categories) {
        INode* node = nodeMap->GetNode(name.c_str());
        EXPECT_TRUE(node->IsFeature()) << name;
        EXPECT_FALSE(std::string(node->GetDisplayName()).empty()) << name;
        std::string value, min, max, inc, message;
        if (IsReadable(node->GetAccessMode())) {
            const int code = Utilities::GetNodeValue(nodeMap.get(), name, value, message);
            EXPECT_TRUE(code == 0 || code == -6) << name << ": " << code << " " << message;
        }
        if (IsReadable(node->GetAccessMode()) && node->GetPrincipalInterfaceType() == intfIInteger) {
            EXPECT_EQ(Utilities::GetIntNodeInfo(nodeMap.get(), name, value, min, max, inc, message), 0) << name;
        }
    }
    EXPECT_EQ(categories["Width"], "ImageFormatControl");
    const std::map<std::string, EInterfaceType> types = {
        {"Width", intfIInteger},         {"PixelFormat", intfIEnumeration}, {"AcquisitionStart", intfICommand},
        {"ExposureTimeAbs", intfIFloat}, {"DeviceModelName", intfIString},  {"PayloadSize", intfIInteger},
    };
    for (const auto& [name, type] : types) {
        ASSERT_TRUE(categories.count(name)) << name;
        EXPECT_EQ(nodeMap->GetNode(name.c_str())->GetPrincipalInterfaceType(), type) << name;
    }
    EXPECT_EQ(nodeMap->GetNode("PayloadSize")->GetAccessMode(), RO);
}

TEST_F(SimulatedNodeMap, WritesReachTheDeviceWhichTheNodeMapKeepsAlive)
{
    std::string value, min, max, inc, message;
    ASSERT_EQ(Utilities::GetIntNodeInfo(nodeMap.get(), "Width", value, min, max, inc, message), 0) << message;
    const long long newWidth = std::stoll(max) - (std::stoll(max) - std::stoll(min)) % std::stoll(inc);
    ASSERT_EQ(Utilities::SetNodeValue(nodeMap.get(), "Width", std::to_string(newWidth), message), 0) << message;
    EXPECT_EQ(arv_device_get_integer_feature_value(device, "Width", nullptr), newWidth);

    g_object_unref(device); // the node map holds its own reference
    device = nullptr;
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "AcquisitionStart", "", message), 0) << message;
    EXPECT_EQ(Utilities::GetNodeValue(nodeMap.get(), "Width", value, message), 0) << message;
    EXPECT_EQ(value, std::to_string(newWidth));
}
