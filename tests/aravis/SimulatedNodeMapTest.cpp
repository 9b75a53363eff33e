// The node map of Aravis's own in-process fake camera, a description we did not write, walked the
// way the host builds its property tree and written through to the device.
#include <gtest/gtest.h>

#include <arv.h>

#include <map>
#include <string>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"

using namespace GenApi;

namespace {

// Every feature under the category, by name, with the category that lists it.
void Walk(INodeMap& nodeMap, const std::string& categoryName, std::map<std::string, std::string>& categories)
{
    CCategoryPtr category = nodeMap.GetNode(categoryName.c_str());
    ASSERT_TRUE(category.IsValid()) << categoryName;
    FeatureList_t features;
    category->GetFeatures(features);
    for (IValue* feature : features) {
        INode* node = feature->GetNode();
        if (node->GetPrincipalInterfaceType() == intfICategory) {
            Walk(nodeMap, node->GetName(), categories);
        } else {
            categories[node->GetName()] = categoryName;
        }
    }
}

} // namespace

TEST(SimulatedNodeMap, HostWalkReadsEveryFeatureAndWritesReachTheDeviceThatTheNodeMapKeepsAlive)
{
    ArvDevice* device = arv_fake_device_new("VB3-GENAPI-01", nullptr);
    ASSERT_NE(device, nullptr);
    std::unique_ptr<INodeMap> nodeMap = CreateNodeMapForDevice(device);
    std::map<std::string, std::string> categories;
    Walk(*nodeMap, "Root", categories);
    std::string value, min, max, inc, message;
    for (const auto& [name, category] : categories) {
        INode* node = nodeMap->GetNode(name.c_str());
        EXPECT_TRUE(node->IsFeature()) << name;
        EXPECT_FALSE(std::string(node->GetDisplayName()).empty()) << name;
        if (IsReadable(node->GetAccessMode())) {
            const int code = Utilities::GetNodeValue(nodeMap.get(), name, value, message);
            EXPECT_TRUE(code == 0 || code == -6) << name << ": " << code << " " << message;
            if (node->GetPrincipalInterfaceType() == intfIInteger) {
                EXPECT_EQ(Utilities::GetIntNodeInfo(nodeMap.get(), name, value, min, max, inc, message), 0) << name;
            }
        }
    }
    EXPECT_EQ(categories["Width"], "ImageFormatControl");
    EXPECT_EQ(nodeMap->GetNode("PayloadSize")->GetAccessMode(), RO);

    ASSERT_EQ(Utilities::GetIntNodeInfo(nodeMap.get(), "Width", value, min, max, inc, message), 0) << message;
    const long long newWidth = std::stoll(max) - (std::stoll(max) - std::stoll(min)) % std::stoll(inc);
    ASSERT_EQ(Utilities::SetNodeValue(nodeMap.get(), "Width", std::to_string(newWidth), message), 0) << message;
    EXPECT_EQ(arv_device_get_integer_feature_value(device, "Width", nullptr), newWidth);
    g_object_unref(device); // the node map holds its own reference
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "AcquisitionStart", "", message), 0) << message;
    EXPECT_EQ(Utilities::GetNodeValue(nodeMap.get(), "Width", value, message), 0) << message;
    EXPECT_EQ(value, std::to_string(newWidth));
}
