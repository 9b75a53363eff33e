// The Aravis camera SDK end to end against a simulated GigE Vision camera in its own process on
// 127.0.0.1, inside this program's private network namespace.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "ZylSdk.h"
#include "genapi/GenApi.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/SdkCameraFeatures.h"
#include "support/common/RequireEnvironment.h"

extern bool g_privateNetworkNamespace;
extern std::string g_privateNetworkNamespaceFailure;

using namespace ZYLGENICAM;
using SdkCameraFeatures::Features;
using SdkCameraFeatures::Read;
using SdkCameraFeatures::Write;

namespace {

constexpr uint64_t kWaitMs = 3000;

class SdkGigeTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        VB3_REQUIRE(g_privateNetworkNamespace,
                    "needs a private network namespace: " << g_privateNetworkNamespaceFailure);
        VB3_REQUIRE(FakeGigeCamera::ProgramAvailable(), FakeGigeCamera::kProgram << " (aravis-tools) is not installed");
        ASSERT_EQ(Init(), SDK_OK);
        ASSERT_TRUE(m_device.Start()) << "the simulated GigE Vision camera did not come up";
    }

    void TearDown() override
    {
        for (ICamera* camera : m_cameras)
            camera->Destroy();
        UnInit();
    }

    struct Listed {
        int tlType = 0;
        int accessStatus = 0;
        std::string serial, model, userName, vendor, ip, mac, mask, gateway, hostInterface, version;
    };

    // The record of our camera in a GigE discovery (found false when it is not listed).
    Listed DiscoverOurCamera(bool& found)
    {
        Listed listed;
        found = false;
        for (ICameraInfo* info : DiscoveryByTLType(TL_GIGE)) {
            if (m_device.SerialNumber() == info->GetSerialNumber()) {
                found = true;
                listed = {info->GetTLType(),
                          info->GetAccessStatus(),
                          info->GetSerialNumber(),
                          info->GetModelName(),
                          info->GetUserDefinedName(),
                          info->GetDeviceText(),
                          info->GetGigEInfo(GIGE_IP),
                          info->GetGigEInfo(GIGE_MAC),
                          info->GetGigEInfo(GIGE_MASK),
                          info->GetGigEInfo(GIGE_GATEWAY),
                          info->GetGigEInfo(GIGE_HOST_INTERFACE_IP),
                          info->GetDeviceText2()};
            }
            info->Destroy();
        }
        return listed;
    }

    ICamera* CreateOurCamera()
    {
        ICamera* created = SdkCameraFeatures::CreateBySerial(TL_GIGE, m_device.SerialNumber());
        if (created != nullptr)
            m_cameras.push_back(created);
        return created;
    }

    FakeGigeCamera m_device;
    std::vector<ICamera*> m_cameras;
};

TEST_F(SdkGigeTest, DiscoveryReadsIdentityAndAddressesWithoutTakingControl)
{
    bool found = false;
    Listed listed = DiscoverOurCamera(found);
    ASSERT_TRUE(found);
    EXPECT_EQ(listed.tlType, TL_GIGE);
    EXPECT_EQ(listed.accessStatus, 2);
    EXPECT_EQ(listed.model, "Fake");
    EXPECT_EQ(listed.vendor, "Aravis");
    EXPECT_FALSE(listed.version.empty());
    EXPECT_EQ(listed.ip, "127.0.0.1");
    EXPECT_TRUE(std::regex_match(listed.mac, std::regex("([0-9A-F]{2}:){5}[0-9A-F]{2}"))) << listed.mac;
    EXPECT_FALSE(listed.mask.empty());
    EXPECT_FALSE(listed.gateway.empty());
    EXPECT_EQ(listed.hostInterface, "127.0.0.1");
    EXPECT_EQ(listed.userName, "") << "this simulator has no user-defined name";

    // Discovery did not take control: it can still be opened, and other transports do not list it.
    for (ICameraInfo* info : DiscoveryByTLType(TL_USB | TL_SIMULATED)) {
        EXPECT_NE(info->GetSerialNumber(), m_device.SerialNumber());
        info->Destroy();
    }
    ICamera* camera = CreateOurCamera();
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(camera->Open(0), SDK_OK);
}

TEST_F(SdkGigeTest, ACameraControlledElsewhereIsBusyAndCannotBeOpened)
{
    ICamera* owner = CreateOurCamera();
    ASSERT_NE(owner, nullptr);
    ASSERT_EQ(owner->Open(0), SDK_OK);
    bool found = false;
    EXPECT_EQ(DiscoverOurCamera(found).accessStatus, 3);
    EXPECT_TRUE(found);

    ICamera* other = CreateOurCamera();
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->Open(0), SDK_ACCESS_DENIED);
    EXPECT_FALSE(other->IsOpen());
    EXPECT_EQ(other->GetDeviceInfo()->GetAccessStatus(), 3);

    ASSERT_EQ(owner->Close(), SDK_OK);
    EXPECT_EQ(DiscoverOurCamera(found).accessStatus, 2);
    EXPECT_EQ(other->Open(0), SDK_OK);
}

TEST_F(SdkGigeTest, OpenCameraIsConfiguredStreamsAndIsReportedLostWhenItsProcessDies)
{
    ICamera* camera = CreateOurCamera();
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->Open(0), SDK_OK);
    EXPECT_TRUE(camera->IsConnected());
    ASSERT_NE(camera->GetModule3()->GetXML(), nullptr);

    EXPECT_EQ(Read(camera, "Width"), "512");
    Write(camera, "Width", "64");
    Write(camera, "Height", "48");
    EXPECT_EQ(Read(camera, "Width"), "64");
    Write(camera, "PixelFormat", "Mono16");
    EXPECT_EQ(Read(camera, "PixelFormat"), "Mono16");
    // The stock simulator has no DeviceUserID, so it cannot be renamed.
    EXPECT_EQ(Features(camera)->GetNode("DeviceUserID"), nullptr);
    Write(camera, "AcquisitionFrameRate", "200");

    ASSERT_EQ(camera->StartGrabbing(0, 4294967295u), SDK_OK);
    uint64_t previous = 0;
    for (int i = 0; i < 3 * 16; ++i) {
        IImage* image = nullptr;
        ASSERT_EQ(camera->GetImage(image, kWaitMs), SDK_OK) << "frame " << i;
        EXPECT_EQ(image->GetWidth(), 64u);
        EXPECT_EQ(image->GetHeight(), 48u);
        EXPECT_EQ(image->GetDataSize(), 64u * 48u * 2u);
        if (previous != 0) {
            EXPECT_GT(image->GetFrameId(), previous);
        }
        previous = image->GetFrameId();
        image->Release();
    }
    EXPECT_TRUE(camera->IsConnected());

    // Kill the camera and poll as the watchdog does, once a second.
    auto killedAt = std::chrono::steady_clock::now();
    m_device.Kill();
    bool connected = true;
    for (int second = 0; second < 20 && connected; ++second) {
        connected = camera->IsConnected();
        if (connected)
            std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - killedAt).count();
    EXPECT_FALSE(connected);
    RecordProperty("SecondsUntilLossSeen", std::to_string(seconds));
    IImage* image = nullptr;
    EXPECT_NE(camera->GetImage(image, 100), SDK_OK);
    if (image != nullptr)
        image->Release();
    EXPECT_EQ(camera->StopGrabbing(), SDK_OK);
    EXPECT_EQ(camera->Close(), SDK_OK);
}

// arv-fake-gv-camera-0.8 keeps the persistent-IP registers and configuration bit (as plain
// memory) but knows no FORCEIP: the temporary address goes unanswered. Module 0 reads them back;
// module 4 reads the stream's packet settings.
TEST_F(SdkGigeTest, SetCameraIpStoresThePersistentAddressAndTheSimulatorLeavesForceIpUnanswered)
{
    const std::string serial = m_device.SerialNumber();
    EXPECT_EQ(SetCameraIP(serial.c_str(), "127.0.0.1", "255.0.0.0", "127.0.0.254", true), SDK_OK);
    ICamera* camera = CreateOurCamera();
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->Open(0), SDK_OK);
    ASSERT_NE(camera->GetModule0(), nullptr);
    GenApi::INodeMap* transport = camera->GetModule0()->GetNodeMap();
    auto integer = [transport](const char* name) {
        GenApi::CIntegerPtr node = transport->GetNode(name);
        return node->GetValue();
    };
    EXPECT_EQ(integer("GevPersistentIPAddress"), 0x7f000001);
    EXPECT_EQ(integer("GevPersistentSubnetMask"), 0xff000000);
    EXPECT_EQ(integer("GevPersistentDefaultGateway"), 0x7f0000fe);
    EXPECT_EQ(integer("GevCurrentIPAddress"), 0x7f000001);
    bool found = false;
    std::string mac = DiscoverOurCamera(found).mac;
    mac.erase(std::remove(mac.begin(), mac.end(), ':'), mac.end());
    EXPECT_EQ(integer("GevMACAddress"), int64_t(std::stoull(mac, nullptr, 16))) << "as discovery states it";
    GenApi::CBooleanPtr persistentConfiguration = transport->GetNode("GevCurrentIPConfigurationPersistentIP");
    EXPECT_TRUE(persistentConfiguration->GetValue());
    GenApi::CEnumerationPtr access = transport->GetNode("GevCCP");
    EXPECT_NE(access->ToString(), "OpenAccess") << "we hold control";
    ASSERT_NE(camera->GetModule4(), nullptr);
    GenApi::INodeMap* stream = camera->GetModule4()->GetNodeMap();
    EXPECT_EQ(GenApi::CIntegerPtr(stream->GetNode("StreamPacketSize"))->GetValue(), 1400) << "the simulator's";
    EXPECT_EQ(GenApi::CEnumerationPtr(stream->GetNode("StreamPacketResend"))->ToString(), "Always");
    ASSERT_EQ(camera->Close(), SDK_OK);

    EXPECT_EQ(SetCameraIP(serial.c_str(), "127.0.0.1", "255.0.0.0", "0.0.0.0", false), SDK_TIMEOUT);
    EXPECT_EQ(SetCameraIP("NO-SUCH-SERIAL", "127.0.0.1", "255.0.0.0", "0.0.0.0", true), SDK_ERROR);
    EXPECT_EQ(SetCameraIP(nullptr, "127.0.0.1", "255.0.0.0", "0.0.0.0", true), SDK_INVALID_ARGUMENT);
    EXPECT_EQ(SetCameraIP(serial.c_str(), "127.0.0.300", "255.0.0.0", "0.0.0.0", false), SDK_INVALID_ARGUMENT);
}

} // namespace
