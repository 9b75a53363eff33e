// What only the camera SDK reaches of a simulated GigE Vision camera in its own process on
// 127.0.0.1: whether another handle controls it, and its persistent address registers.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ZylSdk.h"
#include "genapi/GenApi.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/PrivateNetworkNamespace.h"
#include "support/common/RequireEnvironment.h"
#include "support/common/SdkCameraFeatures.h"

extern std::string g_privateNetworkNamespaceFailure;

using namespace ZYLGENICAM;

namespace {

class SdkGigeTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        VB3_REQUIRE(InPrivateNetworkNamespace(), "no private network namespace: " << g_privateNetworkNamespaceFailure);
        VB3_REQUIRE(FakeGigeCamera::ProgramAvailable(), FakeGigeCamera::kProgram << " is not installed");
        ASSERT_EQ(Init(), SDK_OK);
        ASSERT_TRUE(m_device.Start());
    }

    void TearDown() override
    {
        for (ICamera* camera : m_cameras)
            camera->Destroy();
        UnInit();
    }

    // The access status a GigE discovery gives our camera; -1 when it is not listed.
    int ListedAccessStatus()
    {
        int status = -1;
        for (ICameraInfo* info : DiscoveryByTLType(TL_GIGE)) {
            if (m_device.SerialNumber() == info->GetSerialNumber())
                status = info->GetAccessStatus();
            info->Destroy();
        }
        return status;
    }

    ICamera* CreateOurCamera()
    {
        ICamera* created = SdkCameraFeatures::CreateBySerial(TL_GIGE, m_device.SerialNumber());
        if (created != nullptr)
            m_cameras.push_back(created);
        return created;
    }

    FakeGigeCamera m_device{"VB3GV01"};
    std::vector<ICamera*> m_cameras;
};

int64_t Integer(GenApi::INodeMap* nodeMap, const char* name)
{
    return GenApi::CIntegerPtr(nodeMap->GetNode(name))->GetValue();
}

} // namespace

TEST_F(SdkGigeTest, ACameraControlledElsewhereIsBusyAndCannotBeOpened)
{
    EXPECT_EQ(ListedAccessStatus(), 2) << "discovery does not take control";
    ICamera* owner = CreateOurCamera();
    ASSERT_NE(owner, nullptr);
    ASSERT_EQ(owner->Open(0), SDK_OK);
    EXPECT_EQ(ListedAccessStatus(), 3);

    ICamera* other = CreateOurCamera();
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->Open(0), SDK_ACCESS_DENIED);
    EXPECT_FALSE(other->IsOpen());
    EXPECT_EQ(other->GetDeviceInfo()->GetAccessStatus(), 3);

    ASSERT_EQ(owner->Close(), SDK_OK);
    EXPECT_EQ(ListedAccessStatus(), 2);
    EXPECT_EQ(other->Open(0), SDK_OK);
}

// arv-fake-gv-camera-0.8 keeps the persistent-IP registers and configuration bit as plain memory.
TEST_F(SdkGigeTest, SetCameraIpStoresThePersistentAddress)
{
    const std::string serial = m_device.SerialNumber();
    EXPECT_EQ(SetCameraIP(serial.c_str(), "127.0.0.1", "255.0.0.0", "127.0.0.254", true), SDK_OK);
    ICamera* camera = CreateOurCamera();
    ASSERT_NE(camera, nullptr);
    ASSERT_EQ(camera->Open(0), SDK_OK);
    ASSERT_NE(camera->GetModule0(), nullptr);
    GenApi::INodeMap* transport = camera->GetModule0()->GetNodeMap();
    EXPECT_EQ(Integer(transport, "GevPersistentIPAddress"), 0x7f000001);
    EXPECT_EQ(Integer(transport, "GevPersistentSubnetMask"), 0xff000000);
    EXPECT_EQ(Integer(transport, "GevPersistentDefaultGateway"), 0x7f0000fe);
    EXPECT_TRUE(GenApi::CBooleanPtr(transport->GetNode("GevCurrentIPConfigurationPersistentIP"))->GetValue());
    ASSERT_EQ(camera->Close(), SDK_OK);

    EXPECT_EQ(SetCameraIP("NO-SUCH-SERIAL", "127.0.0.1", "255.0.0.0", "0.0.0.0", true), SDK_ERROR);
    EXPECT_EQ(SetCameraIP(nullptr, "127.0.0.1", "255.0.0.0", "0.0.0.0", true), SDK_INVALID_ARGUMENT);
    EXPECT_EQ(SetCameraIP(serial.c_str(), "127.0.0.300", "255.0.0.0", "0.0.0.0", false), SDK_INVALID_ARGUMENT);
}
