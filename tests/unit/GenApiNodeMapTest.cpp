// The GenApi layer over ArvGc, driven by a GenICam document of our own (every node type, ranges,
// access modes, availability), as a host building its property tree would use it.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "support/common/TextFile.h"

using namespace GenApi;

namespace {

std::unique_ptr<INodeMap> LoadFeatures()
{
    const std::string xml = ReadTextFile(std::string(VB3_TEST_DATA_DIR) + "/genapi_features.xml");
    EXPECT_FALSE(xml.empty());
    return CreateNodeMapFromXml(xml, "GenApiTestDevice");
}

std::vector<std::string> NamesOf(const NodeList_t& nodes)
{
    std::vector<std::string> names;
    for (INode* node : nodes) {
        names.push_back(node->GetName());
    }
    return names;
}

class GenApiNodeMap : public ::testing::Test {
protected:
    std::unique_ptr<INodeMap> nodeMap = LoadFeatures();
};

} // namespace

TEST_F(GenApiNodeMap, FindsNodesByNameAndKeepsThemStable)
{
    INode* width = nodeMap->GetNode("Width");
    ASSERT_NE(width, nullptr);
    EXPECT_EQ(width, nodeMap->GetNode("Width"));
    EXPECT_EQ(std::string(width->GetName()), "Width");
    EXPECT_EQ(std::string(width->GetName(true)), "Std::Width");
    EXPECT_EQ(width->GetNodeMap(), nodeMap.get());
    EXPECT_EQ(std::string(nodeMap->GetDeviceName()), "GenApiTestDevice");

    EXPECT_EQ(nodeMap->GetNode("NoSuchNode"), nullptr);
    EXPECT_EQ(nodeMap->GetNode(""), nullptr);
    EXPECT_EQ(nodeMap->GetNode(std::string(100000, 'W')), nullptr);
    // Entries are reached under GenApi's composed name only.
    EXPECT_EQ(nodeMap->GetNode("Mono8"), nullptr);
    ASSERT_NE(nodeMap->GetNode("EnumEntry_PixelFormat_Mono8"), nullptr);
    EXPECT_EQ(nodeMap->GetNode("EnumEntry_PixelFormat_Nothing"), nullptr);

    CCategoryPtr imageFormat = nodeMap->GetNode("ImageFormatControl");
    ASSERT_TRUE(imageFormat.IsValid());
    FeatureList_t features(2, nullptr);
    imageFormat->GetFeatures(features);
    ASSERT_EQ(features.size(), 5u) << "the call replaces what the host's list held";
    EXPECT_EQ(std::string(features.front()->GetNode()->GetName()), "Width");
}

TEST_F(GenApiNodeMap, AccessModeFoldsInImplementedAvailableAndLocked)
{
    const std::vector<std::pair<const char*, EAccessMode>> expected = {{"Width", RW},
                                                                       {"SensorWidth", RO},
                                                                       {"DeviceKey", WO},
                                                                       {"AvailableFeature", RW},
                                                                       {"UnavailableFeature", NA},
                                                                       {"DanglingFeature", NA},
                                                                       {"LockedFeature", RO},
                                                                       {"UnimplementedFeature", NI},
                                                                       {"Root", RO},
                                                                       {"DeviceReset", RW},
                                                                       {"AcquisitionStart", RW},
                                                                       {"EnumEntry_PixelFormat_Mono8", RO},
                                                                       {"EnumEntry_PixelFormat_Mono12", NA},
                                                                       {"DeviceTemperatureRaw", RO},
                                                                       {"AcquisitionMode", RO}};
    for (const auto& [name, mode] : expected) {
        EXPECT_EQ(nodeMap->GetNode(name)->GetAccessMode(), mode) << name;
    }
    EXPECT_FALSE(IsAvailable(nodeMap->GetNode("UnavailableFeature")));
    EXPECT_TRUE(IsImplemented(nodeMap->GetNode("UnavailableFeature")));
    EXPECT_FALSE(IsImplemented(nodeMap->GetNode("UnimplementedFeature")));
    EXPECT_TRUE(IsReadable(CIntegerPtr(nodeMap->GetNode("LockedFeature"))));
    EXPECT_FALSE(IsWritable(CIntegerPtr(nodeMap->GetNode("LockedFeature"))));
}

TEST_F(GenApiNodeMap, IntegerWritesAreVerifiedAgainstRangeIncrementAndAccess)
{
    CIntegerPtr width = nodeMap->GetNode("Width");
    EXPECT_EQ(width->GetValue(), 640);
    EXPECT_EQ(width->GetMin(), 16);
    EXPECT_EQ(width->GetMax(), 1024);
    EXPECT_EQ(width->GetInc(), 8);
    EXPECT_EQ(std::string(width->GetUnit()), "px");

    width->SetValue(1024);
    EXPECT_EQ(width->GetValue(true, true), 1024);
    EXPECT_THROW(width->SetValue(1032), GenICam::OutOfRangeException);
    EXPECT_THROW(width->SetValue(8), GenICam::OutOfRangeException);
    EXPECT_THROW(width->SetValue(20), GenICam::OutOfRangeException);
    EXPECT_EQ(width->GetValue(), 1024);

    // Without Verify the value goes through, and a verified read then reports it as out of range.
    width->SetValue(1100, false);
    EXPECT_EQ(width->GetValue(), 1100);
    EXPECT_THROW(width->GetValue(true), GenICam::OutOfRangeException);

    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("SensorWidth"))->SetValue(2048), GenICam::AccessException);
    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("DeviceKey"))->GetValue(), GenICam::AccessException);
    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("UnavailableFeature"))->GetValue(), GenICam::AccessException);
    EXPECT_THROW(CIntegerPtr(nodeMap->GetNode("LockedFeature"))->SetValue(1), GenICam::AccessException);
    CIntegerPtr(nodeMap->GetNode("DeviceKey"))->SetValue(1234);
}

namespace {

struct IntegerText {
    const char* node;
    const char* text;
    int64_t value;
    const char* written;
};

void PrintTo(const IntegerText& text, std::ostream* out)
{
    *out << text.node << '=' << text.text;
}

class GenApiIntegerText : public GenApiNodeMap, public ::testing::WithParamInterface<IntegerText> {};

} // namespace

TEST_P(GenApiIntegerText, FromStringReadsDecimalUnlessPrefixed0xAndToStringWritesTheRepresentation)
{
    CIntegerPtr node = nodeMap->GetNode(GetParam().node);
    node->FromString(GetParam().text);
    EXPECT_EQ(node->GetValue(), GetParam().value);
    EXPECT_EQ(std::string(node->ToString()), GetParam().written);
}

INSTANTIATE_TEST_SUITE_P(
    PureNumberHexNumberIPV4AddressMACAddress, GenApiIntegerText,
    ::testing::Values(IntegerText{"Height", "010", 10, "10"}, IntegerText{"Height", "08", 8, "8"},
                      IntegerText{"Height", "0x100", 256, "256"}, IntegerText{"Height", "-42", -42, "-42"},
                      IntegerText{"Height", "4294967296", 4294967296LL, "4294967296"},
                      IntegerText{"FirmwareChecksum", "4096", 4096, "0x1000"},
                      IntegerText{"FirmwareChecksum", "0xBEEF", 0xBEEF, "0xbeef"},
                      IntegerText{"FirmwareChecksum", "-1", -1, "0xffffffffffffffff"},
                      IntegerText{"FirmwareChecksum", "0xffffffffffffffff", -1, "0xffffffffffffffff"},
                      IntegerText{"ChecksumAlias", "0X1F", 31, "0x1f"},
                      IntegerText{"PersistentIP", "10.0.0.1", 0x0A000001, "10.0.0.1"},
                      IntegerText{"PersistentIP", "3232235796", 0xC0A80114, "192.168.1.20"},
                      IntegerText{"MacAddress", "00:0c:29:AA:bb:cc", 0x000C29AABBCC, "00:0c:29:aa:bb:cc"},
                      IntegerText{"MacAddress", "0x1", 1, "00:00:00:00:00:01"}));

TEST_F(GenApiNodeMap, IntegerFromStringRefusesTextOfNoForm)
{
    const std::vector<std::pair<const char*, const char*>> malformed = {{"Height", "12abc"},
                                                                        {"Height", ""},
                                                                        {"Height", "99999999999999999999999"},
                                                                        {"Height", "0x"},
                                                                        {"Height", "0x0x1"},
                                                                        {"Height", "-0x10"},
                                                                        {"Height", "10.0.0.1"},
                                                                        {"PersistentIP", "256.0.0.1"},
                                                                        {"PersistentIP", "1.2.3"},
                                                                        {"PersistentIP", "1.2.3.4.5"},
                                                                        {"MacAddress", "00:0c:29:aa:bb"},
                                                                        {"MacAddress", "0x11112222333344445"}};
    for (const auto& [name, text] : malformed) {
        CIntegerPtr node = nodeMap->GetNode(name);
        const int64_t before = node->GetValue();
        EXPECT_THROW(node->FromString(text), GenICam::InvalidArgumentException) << name << " '" << text << "'";
        EXPECT_EQ(node->GetValue(), before) << name;
    }
}

TEST_F(GenApiNodeMap, FloatsVerifyMinAndMaxButNotTheIncrement)
{
    CFloatPtr gain = nodeMap->GetNode("Gain");
    EXPECT_DOUBLE_EQ(gain->GetValue(), 0.5);
    EXPECT_EQ(std::string(gain->GetUnit()), "dB");
    gain->SetValue(12.25); // off the 0.5 grid
    EXPECT_DOUBLE_EQ(gain->GetValue(true, true), 12.25);
    EXPECT_EQ(std::string(gain->ToString(true)), "12.25");
    EXPECT_THROW(gain->SetValue(24.5), GenICam::OutOfRangeException);
    EXPECT_THROW(gain->SetValue(-0.5), GenICam::OutOfRangeException);

    CFloatPtr blackLevel = nodeMap->GetNode("BlackLevel");
    blackLevel->SetValue(0.2); // Min -10, Inc 2
    EXPECT_DOUBLE_EQ(blackLevel->GetValue(true), 0.2);

    CFloatPtr exposure = nodeMap->GetNode("ExposureTime");
    exposure->FromString("1234.75");
    EXPECT_DOUBLE_EQ(exposure->GetValue(), 1234.75);
    EXPECT_THROW(exposure->FromString("fast"), GenICam::InvalidArgumentException);
}

TEST_F(GenApiNodeMap, FloatIncrementFollowsPValueLikeMinAndMaxAndItsAbsenceIsARuntimeError)
{
    CFloatPtr alias = nodeMap->GetNode("GainAlias");
    EXPECT_TRUE(alias->HasInc());
    EXPECT_DOUBLE_EQ(alias->GetInc(), 0.5);
    EXPECT_DOUBLE_EQ(alias->GetMax(), 24.0);

    CFloatPtr exposure = nodeMap->GetNode("ExposureTime");
    EXPECT_FALSE(exposure->HasInc());
    EXPECT_THROW(exposure->GetInc(), GenICam::RuntimeException);
}

TEST_F(GenApiNodeMap, RegistersOfferTheirBytesGetChecksReadabilityAlwaysSetWritabilityWhenVerifying)
{
    CRegisterPtr lut = nodeMap->GetNode("LutTable");
    ASSERT_TRUE(lut.IsValid());
    EXPECT_EQ(lut->GetAddress(), 0x2000);
    EXPECT_EQ(lut->GetLength(), 16);
    EXPECT_TRUE(CRegisterPtr(nodeMap->GetNode("DeviceTemperatureRaw")).IsValid());
    EXPECT_FALSE(CRegisterPtr(nodeMap->GetNode("Width")).IsValid());

    uint8_t bytes[16] = {};
    EXPECT_THROW(lut->Get(bytes, 8), GenICam::OutOfRangeException);
    EXPECT_THROW(lut->Set(nullptr, 16), GenICam::InvalidArgumentException);
    EXPECT_THROW(lut->Get(bytes, 16), GenICam::RuntimeException) << "no device to read from";
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("DeviceTemperatureRaw"))->Set(bytes, 4), GenICam::AccessException);
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("CalibrationBlob"))->Get(bytes, 8, false), GenICam::AccessException);
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("HiddenBlob"))->Get(bytes, 8), GenICam::AccessException);
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("HiddenBlob"))->Set(bytes, 8), GenICam::AccessException);
}

TEST_F(GenApiNodeMap, BooleanAndStringValues)
{
    CBooleanPtr reverse = nodeMap->GetNode("ReverseX");
    EXPECT_FALSE(reverse->GetValue());
    reverse->FromString("True");
    EXPECT_TRUE(reverse->GetValue());
    EXPECT_EQ(std::string(reverse->ToString()), "1");
    EXPECT_THROW(reverse->FromString("maybe"), GenICam::InvalidArgumentException);

    CStringPtr userId = nodeMap->GetNode("DeviceUserID");
    EXPECT_EQ(std::string(userId->GetValue()), "Camera One");
    const std::string longText(100000, 'x');
    userId->SetValue(longText);
    EXPECT_EQ(std::string(userId->GetValue()), longText);
    EXPECT_THROW(CStringPtr(nodeMap->GetNode("DeviceModelName"))->SetValue("Other"), GenICam::AccessException);
    EXPECT_EQ(std::string(CStringPtr(nodeMap->GetNode("DeviceModelName"))->GetValue()), "VB3-Test-Model");
}

TEST_F(GenApiNodeMap, CommandsExecuteAndReportCompletion)
{
    CCommandPtr start = nodeMap->GetNode("AcquisitionStart");
    CIntegerPtr raw = nodeMap->GetNode("AcquisitionStartRaw");
    EXPECT_TRUE(start->IsDone());
    start->Execute();
    EXPECT_EQ(raw->GetValue(), 1);
    EXPECT_FALSE(start->IsDone());
    raw->SetValue(0); // what the device does when it has finished
    EXPECT_TRUE(start->IsDone());

    CCommandPtr reset = nodeMap->GetNode("DeviceReset");
    reset->Execute();
    EXPECT_TRUE(reset->IsDone());
}

TEST_F(GenApiNodeMap, EnumerationEntriesInDocumentOrderWithAvailability)
{
    CEnumerationPtr pixelFormat = nodeMap->GetNode("PixelFormat");
    NodeList_t entries;
    pixelFormat->GetEntries(entries);
    EXPECT_EQ(NamesOf(entries),
              (std::vector<std::string>{"EnumEntry_PixelFormat_Mono8", "EnumEntry_PixelFormat_Mono12",
                                        "EnumEntry_PixelFormat_Mono16", "EnumEntry_PixelFormat_RGB8"}));
    StringList_t symbolics;
    pixelFormat->GetSymbolics(symbolics);
    EXPECT_EQ(std::vector<std::string>(symbolics.begin(), symbolics.end()),
              (std::vector<std::string>{"Mono8", "Mono16", "RGB8"}));

    EXPECT_EQ(std::string(pixelFormat->ToString()), "Mono8");
    EXPECT_EQ(std::string(pixelFormat->GetCurrentEntry()->GetSymbolic()), "Mono8");
    pixelFormat->FromString("RGB8");
    EXPECT_EQ(pixelFormat->GetIntValue(), 35127316);
    EXPECT_EQ(pixelFormat->GetCurrentEntry()->GetValue(), 35127316);
    EXPECT_EQ(std::string(pixelFormat->GetEntryByName("Mono16")->ToString()), "Mono16");
    EXPECT_EQ(pixelFormat->GetEntryByName("Mono24"), nullptr);
    EXPECT_EQ(pixelFormat->GetEntry(17825799), pixelFormat->GetEntryByName("Mono16"));

    EXPECT_THROW(pixelFormat->FromString("Mono12"), GenICam::AccessException);
    EXPECT_THROW(pixelFormat->FromString("Bayer"), GenICam::InvalidArgumentException);
    EXPECT_THROW(pixelFormat->SetIntValue(7), GenICam::OutOfRangeException);
    EXPECT_EQ(std::string(pixelFormat->ToString()), "RGB8");

    CEnumerationPtr mode = nodeMap->GetNode("AcquisitionMode");
    EXPECT_EQ(std::string(mode->ToString()), "Continuous");
    EXPECT_THROW(mode->FromString("SingleFrame"), GenICam::AccessException);
}

TEST_F(GenApiNodeMap, AravisErrorsBecomeGenICamExceptions)
{
    // The register needs a device, and this node map has none.
    try {
        CIntegerPtr(nodeMap->GetNode("DeviceTemperatureRaw"))->GetValue();
        FAIL() << "a register was read without a device";
    } catch (const GenICam::RuntimeException& exception) {
        EXPECT_NE(std::string(exception.GetDescription()).find("DeviceTemperatureRaw"), std::string::npos);
    }
    EXPECT_EQ(CIntegerPtr(nodeMap->GetNode("Width"))->GetValue(), 640);
}

TEST(GenApiNodeMapFactory, RefusesDocumentsThatAreNotGenICam)
{
    EXPECT_THROW(CreateNodeMapFromXml("", "Empty"), GenICam::RuntimeException);
    EXPECT_THROW(CreateNodeMapFromXml("<RegisterDescription", "Broken"), GenICam::RuntimeException);
    EXPECT_THROW(CreateNodeMapFromXml("<RegisterDescription><Integer Name=\"A\"><Value>1</Value></Integer>", "Cut"),
                 GenICam::RuntimeException);
    EXPECT_THROW(CreateNodeMapFromXml("<html><body/></html>", "Web page"), GenICam::RuntimeException);
    auto minimal = CreateNodeMapFromXml("\xEF\xBB\xBF<?xml version=\"1.0\"?><RegisterDescription><Integer Name=\"A\">"
                                        "<Value>1</Value></Integer></RegisterDescription>",
                                        "Minimal");
    EXPECT_EQ(CIntegerPtr(minimal->GetNode("A"))->GetValue(), 1);
    EXPECT_THROW(CreateNodeMapForDevice(nullptr), GenICam::LogicalErrorException);
}

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
                if (CreateNodeMapFromXml(xml, "Parallel")->GetNode("Width") == nullptr) {
                    ++incomplete;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(incomplete.load(), 0);
}
