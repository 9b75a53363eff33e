// A vendor-style GigE Vision description of ours (tests/data/vendor_gige_area_camera.xml) on Aravis's in-process
// fake device: floats whose current value sits off their declared increment, hexadecimal and address features,
// and registers read and written as raw bytes, as a viewer's property tree and register view use them.
#include <gtest/gtest.h>

#include <arv.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "genapi/GenApi.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"

using namespace GenApi;

namespace {

class VendorCameraDescription : public ::testing::Test {
protected:
    void SetUp() override {
        GError* error = nullptr;
        arv_set_fake_camera_genicam_filename(VB3_TEST_DATA_DIR "/vendor_gige_area_camera.xml");
        device = arv_fake_device_new("VB3-VENDOR-01", &error);
        arv_set_fake_camera_genicam_filename(nullptr);
        ASSERT_NE(device, nullptr) << (error != nullptr ? error->message : "");
        camera = arv_fake_device_get_fake_camera(ARV_FAKE_DEVICE(device));
        nodeMap = CreateNodeMapForDevice(device);
    }
    void TearDown() override {
        nodeMap.reset();
        if (device != nullptr) {
            g_object_unref(device);
        }
    }

    // What the typed text access (the host's property tree) reads; empty on failure.
    std::string Read(const std::string& name) {
        std::string value, message;
        const int code = Utilities::GetNodeValue(nodeMap.get(), name, value, message);
        EXPECT_EQ(code, 0) << name << ": " << message;
        return value;
    }

    std::vector<uint8_t> RegisterBytes(const char* name) {
        CRegisterPtr reg = nodeMap->GetNode(name);
        std::vector<uint8_t> bytes(static_cast<std::size_t>(reg->GetLength()));
        reg->Get(bytes.data(), reg->GetLength(), false, true);
        return bytes;
    }

    ArvDevice* device = nullptr;
    ArvFakeCamera* camera = nullptr;
    std::unique_ptr<INodeMap> nodeMap;
};

} // namespace

TEST_F(VendorCameraDescription, OffGridFloatsAreReadAndWrittenAndGainTakesItsIncrementThroughPValue) {
    EXPECT_EQ(Read("AcquisitionFrameRate"), "29.970000");
    EXPECT_EQ(Read("Gain"), "3.010000");

    // The device reports an exposure the 10 us grid from 20 us does not contain.
    const double exposure = 9999.7;
    uint64_t bits = 0;
    std::memcpy(&bits, &exposure, sizeof bits);
    std::vector<uint8_t> raw;
    for (int shift = 56; shift >= 0; shift -= 8) {
        raw.push_back(static_cast<uint8_t>(bits >> shift));
    }
    CRegisterPtr(nodeMap->GetNode("ExposureTimeReg"))->Set(raw.data(), 8);
    EXPECT_EQ(Read("ExposureTime"), "9999.700000");
    std::string message;
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "ExposureTime", "12345.6", message), 0) << message;
    EXPECT_EQ(Read("ExposureTime"), "12345.600000");
    EXPECT_EQ(Utilities::SetNodeValue(nodeMap.get(), "ExposureTime", "10", message), -7) << "below Min";

    CFloatPtr gain = nodeMap->GetNode("Gain");
    EXPECT_TRUE(gain->HasInc());
    EXPECT_DOUBLE_EQ(gain->GetInc(), 0.1);
    EXPECT_DOUBLE_EQ(gain->GetMax(), 24.0);
    EXPECT_EQ(CFloatPtr(nodeMap->GetNode("ExposureTime"))->GetRepresentation(), Logarithmic);
    EXPECT_THROW(CFloatPtr(nodeMap->GetNode("Gamma"))->GetInc(), GenICam::RuntimeException);
}

TEST_F(VendorCameraDescription, HexAndAddressFeaturesUseTheirRepresentationInToStringOnly) {
    arv_fake_camera_write_register(camera, 0x8010, 0xC0FFEE42);
    const uint8_t mac[8] = {0, 0, 0x00, 0x0c, 0x29, 0xaa, 0xbb, 0xcc};
    arv_fake_camera_write_memory(camera, 0x0008, sizeof mac, mac);

    EXPECT_EQ(std::string(CIntegerPtr(nodeMap->GetNode("DeviceFirmwareChecksum"))->ToString()), "0xc0ffee42");
    EXPECT_EQ(Read("DeviceFirmwareChecksum"), "3237998146");
    EXPECT_EQ(std::string(CIntegerPtr(nodeMap->GetNode("GevMACAddress"))->ToString()), "00:0c:29:aa:bb:cc");

    CIntegerPtr address = nodeMap->GetNode("GevPersistentIPAddress");
    address->FromString("192.168.10.42");
    EXPECT_EQ(std::string(address->ToString()), "192.168.10.42");
    EXPECT_EQ(RegisterBytes("GevPersistentIPAddress"), (std::vector<uint8_t>{192, 168, 10, 42}));
    CIntegerPtr(nodeMap->GetNode("GevPersistentSubnetMask"))->FromString("0xffffff00");
    EXPECT_EQ(std::string(CIntegerPtr(nodeMap->GetNode("GevPersistentSubnetMask"))->ToString()), "255.255.255.0");
}

TEST_F(VendorCameraDescription, RegistersMoveRawBytesBesideTheirTypedValue) {
    CRegisterPtr lut = nodeMap->GetNode("LUTValueAll");
    EXPECT_EQ(lut->GetAddress(), 0x8100);
    std::vector<uint8_t> table(64);
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = static_cast<uint8_t>(255 - 4 * i);
    }
    lut->Set(table.data(), 64);
    EXPECT_EQ(RegisterBytes("LUTValueAll"), table);

    CIntegerPtr(nodeMap->GetNode("GevCurrentIPConfigurationDHCP"))->SetValue(1);
    CRegisterPtr configuration = nodeMap->GetNode("GevCurrentIPConfigurationPersistentIP");
    EXPECT_EQ(configuration->GetAddress(), 0x14);
    EXPECT_EQ(RegisterBytes("GevCurrentIPConfigurationPersistentIP"), (std::vector<uint8_t>{0, 0, 0, 0x02}));
    const uint8_t bytes[4] = {0, 0, 0, 0x05};
    EXPECT_THROW(CRegisterPtr(nodeMap->GetNode("GevCurrentIPConfigurationLLA"))->Set(bytes, 4),
                 GenICam::AccessException);
    configuration->Set(bytes, 4);
    EXPECT_EQ(CIntegerPtr(nodeMap->GetNode("GevCurrentIPConfigurationLLA"))->GetValue(false, true), 1);
    EXPECT_EQ(CIntegerPtr(nodeMap->GetNode("GevCurrentIPConfigurationDHCP"))->GetValue(false, true), 0);

    const char name[16] = "Line 3";
    CRegisterPtr(nodeMap->GetNode("DeviceUserID"))->Set(reinterpret_cast<const uint8_t*>(name), 16);
    EXPECT_EQ(Read("DeviceUserID"), "Line 3");
    EXPECT_EQ(Read("DeviceVendorName"), "Aravis");
}
