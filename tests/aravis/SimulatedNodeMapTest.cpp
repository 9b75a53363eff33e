// The node map of Aravis's own in-process fake camera, walked the way the host builds its property tree:
// categories, then each feature's display name, type, access, value and range or entries.
#include <gtest/gtest.h>

#include <arv.h>

#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"

using namespace GenApi;

namespace {

struct FeatureRow {
    std::string category;
    std::string displayName;
    EInterfaceType type;
    EAccessMode access;
    std::string value;
    std::string range; // "min..max step inc" for integers, "min..max" for floats, entries for enumerations
};

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

    // What the host's property tree shows for one feature.
    FeatureRow Describe(const std::string& category, INode* node)
    {
        FeatureRow row{category, node->GetDisplayName(), node->GetPrincipalInterfaceType(), node->GetAccessMode(), "",
                       ""};
        std::string message;
        if (IsReadable(row.access)) {
            const int code = Utilities::GetNodeValue(nodeMap.get(), node->GetName(), row.value, message);
            EXPECT_TRUE(code == 0 || code == -6) << node->GetName() << ": " << code << " " << message;
        }
        if (row.type == intfIInteger && IsReadable(row.access)) {
            std::string value, min, max, inc;
            EXPECT_EQ(Utilities::GetIntNodeInfo(nodeMap.get(), node->GetName(), value, min, max, inc, message), 0)
                << node->GetName() << ": " << message;
            row.range = min + ".." + max + " step " + inc;
        } else if (row.type == intfIFloat) {
            CFloatPtr floating(node);
            row.range = Utilities::ToStringWithPrecision(floating->GetMin(), 3) + ".." +
                        Utilities::ToStringWithPrecision(floating->GetMax(), 3);
        } else if (row.type == intfIEnumeration) {
            StringList_t symbolics;
            CEnumerationPtr(node)->GetSymbolics(symbolics);
            for (const GenICam::gcstring& symbolic : symbolics) {
                row.range += (row.range.empty() ? "" : ",") + symbolic.str();
            }
        }
        return row;
    }

    void Walk(const std::string& categoryName, std::map<std::string, FeatureRow>& rows)
    {
        CCategoryPtr category = nodeMap->GetNode(categoryName.c_str());
        ASSERT_TRUE(category.IsValid()) << categoryName;
        FeatureList_t features;
        category->GetFeatures(features);
        for (IValue* feature : features) {
            INode* node = feature->GetNode();
            if (node->GetPrincipalInterfaceType() == intfICategory) {
                Walk(node->GetName(), rows);
            } else {
                rows[node->GetName()] = Describe(categoryName, node);
            }
        }
    }

    ArvDevice* device = nullptr;
    std::unique_ptr<INodeMap> nodeMap;
};

} // namespace

TEST_F(SimulatedNodeMap, HostWalkShowsEveryFeatureWithItsValueAndRange)
{
    std::map<std::string, FeatureRow> rows;
    Walk("Root", rows);

    ASSERT_TRUE(rows.count("Width"));
    const FeatureRow& width = rows["Width"];
    EXPECT_EQ(width.category, "ImageFormatControl");
    EXPECT_EQ(width.type, intfIInteger);
    EXPECT_EQ(width.access, RW);
    EXPECT_FALSE(width.value.empty());
    EXPECT_NE(width.range.find(" step "), std::string::npos);

    ASSERT_TRUE(rows.count("PixelFormat"));
    EXPECT_EQ(rows["PixelFormat"].type, intfIEnumeration);
    EXPECT_NE(rows["PixelFormat"].range.find("Mono8"), std::string::npos);
    EXPECT_NE(rows["PixelFormat"].range.find(rows["PixelFormat"].value), std::string::npos);

    ASSERT_TRUE(rows.count("AcquisitionStart"));
    EXPECT_EQ(rows["AcquisitionStart"].type, intfICommand);
    ASSERT_TRUE(rows.count("ExposureTimeAbs"));
    EXPECT_EQ(rows["ExposureTimeAbs"].type, intfIFloat);
    EXPECT_NE(rows["ExposureTimeAbs"].value.find('.'), std::string::npos);
    ASSERT_TRUE(rows.count("DeviceModelName"));
    EXPECT_EQ(rows["DeviceModelName"].type, intfIString);
    EXPECT_FALSE(rows["DeviceModelName"].value.empty());
    ASSERT_TRUE(rows.count("PayloadSize"));
    EXPECT_EQ(rows["PayloadSize"].access, RO);

    for (const auto& [name, row] : rows) {
        EXPECT_FALSE(row.displayName.empty()) << name;
        EXPECT_TRUE(nodeMap->GetNode(name.c_str())->IsFeature()) << name;
    }
}

TEST_F(SimulatedNodeMap, WritesReachTheDeviceAndAreVerified)
{
    std::string message;
    std::string value, min, max, inc;
    ASSERT_EQ(Utilities::GetIntNodeInfo(nodeMap.get(), "Width", value, min, max, inc, message), 0) << message;
    const long long newWidth = std::stoll(max) - (std::stoll(max) - std::stoll(min)) % std::stoll(inc);

    ASSERT_EQ(Utilities::SetNodeValue(nodeMap.get(), "Width", std::to_string(newWidth), message), 0) << message;
    GError* error = nullptr;
    EXPECT_EQ(arv_device_get_integer_feature_value(device, "Width", &error), newWidth);
    EXPECT_EQ(error, nullptr);

    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "Width", std::to_string(std::stoll(max) + 1), message), -7);
    EXPECT_NE(message.find("Max"), std::string::npos) << message;
    EXPECT_EQ(Utilities::GetNodeValue(nodeMap.get(), "Width", value, message), 0);
    EXPECT_EQ(value, std::to_string(newWidth));

    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "PayloadSize", "1", message), -5);
    EXPECT_EQ(message, "Node unwritable");
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "PixelFormat", "NoSuchFormat", message), -7);
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "AcquisitionStart", "", message), 0);
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "AcquisitionStop", "", message), 0);
    EXPECT_EQ(Utilities::GetNodeValue(nodeMap.get(), "Debug", value, message), -6);
}

TEST_F(SimulatedNodeMap, NodeMapKeepsTheDeviceAliveAndServesSeveralThreads)
{
    g_object_unref(device); // the node map holds its own reference
    device = nullptr;

    std::vector<std::thread> threads;
    std::vector<int> failures(3, 0);
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([this, t, &failures]() {
            std::string value, message;
            for (int i = 0; i < 200; ++i) {
                const std::string name = t == 0 ? "Width" : t == 1 ? "Height" : "ExposureTimeAbs";
                if (Utilities::GetNodeValue(nodeMap.get(), name, value, message) != 0 ||
                    Utilities::SetNodeValue(nodeMap.get(), name, value.substr(0, value.find('.')), message) != 0) {
                    ++failures[t];
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, std::vector<int>(3, 0));
}
