// The GenApi layer over ArvGc, driven by a GenICam document of our own (every node type, ranges,
// access modes, availability), as a host building its property tree would use it.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "support/common/TextFile.h"

using namespace GenApi;

namespace {

class GenApiNodeMap : public ::testing::Test {
protected:
    std::unique_ptr<INodeMap> nodeMap =
        CreateNodeMapFromXml(ReadTextFile(std::string(VB3_TEST_DATA_DIR) + "/genapi_features.xml"), "GenApiTestDevice");
};

} // namespace

TEST_F(GenApiNodeMap, FindsNodesByNameAndKeepsThemStable)
{
    INode* width = nodeMap->GetNode("Width");
    ASSERT_NE(width, nullptr);
    EXPECT_EQ(width, nodeMap->GetNode("Width"));
    EXPECT_EQ(std::string(width->GetName(true)), "Std::Width");

    EXPECT_EQ(nodeMap->GetNode("NoSuchNode"), nullptr);
    // Entries are reached under GenApi's composed name only.
    EXPECT_EQ(nodeMap->GetNode("Mono8"), nullptr);
    ASSERT_NE(nodeMap->GetNode("EnumEntry_PixelFormat_Mono8"), nullptr);

    CCategoryPtr imageFormat = nodeMap->GetNode("ImageFormatControl");
    ASSERT_TRUE(imageFormat.IsValid());
    FeatureList_t features(2, nullptr);
    imageFormat->GetFeatures(features);
    ASSERT_EQ(features.size(), 5u) << "the call replaces what the host's list held";
    EXPECT_EQ(std::string(features.front()->GetNode()->GetName()), "Width");
}

TEST_F(GenApiNodeMap, AccessModeFoldsInImplementedAvailableAndLocked)
{
    const std::vector<std::pair<EAccessMode, std::vector<const char*>>> modes = {
        {RW, {"Width"}},
        {RO, {"SensorWidth", "LockedFeature", "AcquisitionMode"}},
        {WO, {"DeviceKey"}},
        {NA, {"UnavailableFeature", "DanglingFeature", "EnumEntry_PixelFormat_Mono12"}},
        {NI, {"UnimplementedFeature"}}};
    for (const auto& [mode, names] : modes) {
        for (const char* name : names) {
            EXPECT_EQ(nodeMap->GetNode(name)->GetAccessMode(), mode) << name;
        }
    }
}

TEST_F(GenApiNodeMap, IntegerWritesAreVerifiedAgainstRangeIncrementAndAccess)
{
    CIntegerPtr width = nodeMap->GetNode("Width");
    width->SetValue(1024);
    EXPECT_EQ(width->GetValue(true, true), 1024);
    EXPECT_THROW(width->SetValue(20), GenICam::OutOfRangeException);

    // Without Verify the value goes through, and a verified read then reports it as out of range.
    width->SetValue(1100, false);
    EXPECT_THROW(width->GetValue(true), GenICam::OutOfRangeException);

    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("SensorWidth"))->SetValue(2048), GenICam::AccessException);
    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("DeviceKey"))->GetValue(), GenICam::AccessException);
    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("LockedFeature"))->SetValue(1), GenICam::AccessException);
}

TEST_F(GenApiNodeMap, IntegerFromStringReadsDecimalUnlessPrefixed0xAndToStringWritesTheRepresentation)
{
    struct IntegerText {
        const char* node;
        const char* text;
        int64_t value;       // what the node holds afterwards
        const char* written; // null: the text is refused
    };
    // Pure number, hex number, IPv4 address and MAC address representations.
    for (const IntegerText& text :
         {IntegerText{"Height", "010", 10, "10"}, IntegerText{"Height", "0x100", 256, "256"},
          IntegerText{"Height", "4294967296", 4294967296LL, "4294967296"},
          IntegerText{"Height", "12abc", 4294967296LL, nullptr}, IntegerText{"Height", "", 4294967296LL, nullptr},
          IntegerText{"Height", "99999999999999999999999", 4294967296LL, nullptr},
          IntegerText{"Height", "-0x10", 4294967296LL, nullptr},
          IntegerText{"FirmwareChecksum", "4096", 4096, "0x1000"},
          IntegerText{"FirmwareChecksum", "-1", -1, "0xffffffffffffffff"},
          IntegerText{"PersistentIP", "10.0.0.1", 0x0A000001, "10.0.0.1"},
          IntegerText{"PersistentIP", "256.0.0.1", 0x0A000001, nullptr},
          IntegerText{"PersistentIP", "1.2.3.4.5", 0x0A000001, nullptr},
          IntegerText{"MacAddress", "00:0c:29:AA:bb:cc", 0x000C29AABBCC, "00:0c:29:aa:bb:cc"},
          IntegerText{"MacAddress", "00:0c:29:aa:bb", 0x000C29AABBCC, nullptr}}) {
        CIntegerPtr node = nodeMap->GetNode(text.node);
        if (text.written == nullptr) {
            EXPECT_THROW(node->FromString(text.text), GenICam::InvalidArgumentException) << text.text;
        } else {
            node->FromString(text.text);
            EXPECT_EQ(std::string(node->ToString()), text.written) << text.node << "=" << text.text;
        }
        EXPECT_EQ(node->GetValue(), text.value) << text.node << "=" << text.text;
    }
}

TEST_F(GenApiNodeMap, FloatsVerifyMinAndMaxButNotTheIncrement)
{
    CFloatPtr gain = nodeMap->GetNode("Gain");
    gain->SetValue(12.25); // off the 0.5 grid
    EXPECT_EQ(std::string(gain->ToString(true)), "12.25");
    EXPECT_THROW(gain->SetValue(24.5), GenICam::OutOfRangeException);
    EXPECT_THROW(gain->SetValue(-0.5), GenICam::OutOfRangeException);

    // The increment follows pValue like Min and Max; asking a float without one is an error.
    CFloatPtr alias = nodeMap->GetNode("GainAlias");
    EXPECT_TRUE(alias->HasInc());
    EXPECT_DOUBLE_EQ(alias->GetInc(), 0.5);
    EXPECT_FALSE(CFloatPtr(nodeMap->GetNode("ExposureTime"))->HasInc());
    EXPECT_THROW(CFloatPtr(nodeMap->GetNode("ExposureTime"))->GetInc(), GenICam::RuntimeException);
}

TEST_F(GenApiNodeMap, RegistersOfferTheirBytesGetChecksReadabilityAlwaysSetWritabilityWhenVerifying)
{
    CRegisterPtr lut = nodeMap->GetNode("LutTable");
    ASSERT_TRUE(lut.IsValid());
    EXPECT_EQ(lut->GetLength(), 16);

    uint8_t bytes[16] = {};
    EXPECT_THROW(lut->Get(bytes, 8), GenICam::OutOfRangeException);
    EXPECT_THROW(lut->Set(nullptr, 16), GenICam::InvalidArgumentException);
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("CalibrationBlob"))->Get(bytes, 8, false), GenICam::AccessException);
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("HiddenBlob"))->Set(bytes, 8), GenICam::AccessException);
}

TEST_F(GenApiNodeMap, BooleanStringAndCommandValues)
{
    CBooleanPtr reverse = nodeMap->GetNode("ReverseX");
    reverse->FromString("True");
    EXPECT_TRUE(reverse->GetValue());
    EXPECT_EQ(std::string(reverse->ToString()), "1");
    EXPECT_THROW(reverse->FromString("maybe"), GenICam::InvalidArgumentException);

    EXPECT_THROW(CStringPtr(nodeMap->GetNode("DeviceModelName"))->SetValue("Other"), GenICam::AccessException);

    CCommandPtr start = nodeMap->GetNode("AcquisitionStart");
    CIntegerPtr raw = nodeMap->GetNode("AcquisitionStartRaw");
    EXPECT_TRUE(start->IsDone());
    start->Execute();
    EXPECT_EQ(raw->GetValue(), 1);
    EXPECT_FALSE(start->IsDone());
    raw->SetValue(0); // what the device does when it has finished
    EXPECT_TRUE(start->IsDone());
}

TEST_F(GenApiNodeMap, EnumerationEntriesInDocumentOrderWithAvailability)
{
    CEnumerationPtr pixelFormat = nodeMap->GetNode("PixelFormat");
    NodeList_t entries;
    pixelFormat->GetEntries(entries);
    EXPECT_EQ(entries.size(), 4u);
    StringList_t symbolics;
    pixelFormat->GetSymbolics(symbolics);
    EXPECT_EQ(std::vector<std::string>(symbolics.begin(), symbolics.end()),
              (std::vector<std::string>{"Mono8", "Mono16", "RGB8"}));

    pixelFormat->FromString("RGB8");
    EXPECT_EQ(pixelFormat->GetIntValue(), 35127316);
    EXPECT_EQ(std::string(pixelFormat->GetCurrentEntry()->GetSymbolic()), "RGB8");
    EXPECT_EQ(pixelFormat->GetEntryByName("Mono24"), nullptr);
    EXPECT_EQ(pixelFormat->GetEntry(17825799), pixelFormat->GetEntryByName("Mono16"));

    EXPECT_THROW(pixelFormat->SetIntValue(7), GenICam::OutOfRangeException);
}

TEST(GenApiNodeMapFactory, RefusesDocumentsThatAreNotGenICam)
{
    EXPECT_THROW(CreateNodeMapFromXml("", "Empty"), GenICam::RuntimeException);
    EXPECT_THROW(CreateNodeMapFromXml("<RegisterDescription><Integer Name=\"A\"><Value>1</Value></Integer>", "Cut"),
                 GenICam::RuntimeException);
    auto minimal = CreateNodeMapFromXml("\xEF\xBB\xBF<?xml version=\"1.0\"?><RegisterDescription><Integer Name=\"A\">"
                                        "<Value>1</Value></Integer></RegisterDescription>",
                                        "Minimal");
    EXPECT_EQ(CIntegerPtr(minimal->GetNode("A"))->GetValue(), 1);
    EXPECT_THROW(CreateNodeMapForDevice(nullptr), GenICam::LogicalErrorException);
}

// The viewer's feature grid and the grab thread use one node map at once.
TEST_F(GenApiNodeMap, SerializesConcurrentUseFromSeveralThreads)
{
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t]() {
            for (int i = 0; i < 300; ++i) {
                try {
                    CIntegerPtr width = nodeMap->GetNode("Width");
                    width->SetValue(16 + 8 * ((t * 300 + i) % 100));
                    (void)width->GetValue(true, true);
                    CEnumerationPtr(nodeMap->GetNode("PixelFormat"))->FromString(i % 2 == 0 ? "Mono8" : "Mono16");
                    NodeList_t nodes;
                    nodeMap->GetNodes(nodes);
                    (void)nodeMap->GetNode("EnumEntry_AcquisitionMode_SingleFrame")->GetAccessMode();
                } catch (const GenICam::GenericException&) {
                    ++failures;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
}

// Two cameras opened at once each have their description parsed; neither may lose nodes or crash.
TEST(GenApiNodeMapFactory, DescriptionsParsedOnSeveralThreadsAtOnceComeOutWhole)
{
    const std::string xml = ReadTextFile(std::string(VB3_TEST_DATA_DIR) + "/vendor_gige_area_camera.xml");
    std::atomic<int> incomplete{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&]() {
            for (int i = 0; i < 20; ++i) {
                incomplete += CreateNodeMapFromXml(xml, "Parallel")->GetNode("Width") == nullptr ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(incomplete.load(), 0);
}
