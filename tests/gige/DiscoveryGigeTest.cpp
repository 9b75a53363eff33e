// The real discovery pass inside this program's private network namespace: a simulated GigE
// Vision camera in its own process is listed, opened by its identifier and streamed like any
// camera; a camera on a foreign subnet (a GVCP responder behind a veth) is listed under the
// adapter that heard it and gets its address forced.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "ZylSdk.h"
#include "device/DeviceManager.h"
#include "support/common/CameraLogRecorder.h"
#include "support/common/DeviceFakeGigeOnVeth.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/GigeDiscoveryStage.h"
#include "support/common/GvcpResponderOnVeth.h"
#include "support/common/RequireEnvironment.h"

extern bool g_privateNetworkNamespace;
extern std::string g_privateNetworkNamespaceFailure;

using Events = DeviceEventRecorder::Events;

namespace {

class DiscoveryGige : public ::testing::Test {
protected:
    void SetUp() override
    {
        VB3_REQUIRE(g_privateNetworkNamespace,
                    "needs a private network namespace: " << g_privateNetworkNamespaceFailure);
    }
};

const uint8_t kForeignMac[6] = {0x02, 0x00, 0x00, 0x77, 0x00, 0x05};

// A camera at 10.99.0.5/24 behind the adapter 192.168.77.1/24, listed by a GigE discovery pass.
class ForeignSubnetGige : public DiscoveryGige {
protected:
    // Sets id to the listed identifier; skips the test when the link could not be built.
    void StartAndList(bool acknowledgesForceIp)
    {
        GvcpResponderOnVeth::Identity identity{"VB3FAR",    "Responder",     "Far",      {},
                                               "10.99.0.5", "255.255.255.0", "10.99.0.1"};
        std::copy(kForeignMac, kForeignMac + 6, identity.mac);
        camera = std::make_unique<GvcpResponderOnVeth>(identity, acknowledgesForceIp);
        std::string failure;
        VB3_REQUIRE(camera->Start(failure), failure);
        stage = std::make_unique<GigeDiscoveryStage>();
        id = stage->WaitForListed(identity.serialNumber);
    }

    std::string id;
    std::unique_ptr<GvcpResponderOnVeth> camera;
    std::unique_ptr<GigeDiscoveryStage> stage; // goes before the camera
};

} // namespace

TEST_F(DiscoveryGige, SimulatedCameraIsDiscoveredOpenedAndStreamed)
{
    VB3_REQUIRE(FakeGigeCamera::ProgramAvailable(), FakeGigeCamera::kProgram << " (aravis-tools) is not installed");
    FakeGigeCamera device("VB3GVDISC");
    ASSERT_TRUE(device.Start()) << "the simulated GigE Vision camera did not come up";
    GigeDiscoveryStage stage;
    DeviceManager* manager = stage.manager;
    DeviceEventRecorder& events = stage.events;

    manager->RefreshDeviceList(ZYLGENICAM::TL_GIGE);
    std::string id;
    ASSERT_TRUE(events.WaitUntil(
        [&](const Events& seen) { return !(id = ListedIdentifier(seen, device.SerialNumber())).empty(); },
        std::chrono::seconds(20)))
        << "the pass never listed the camera";
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_IP), FakeGigeCamera::kAddress);
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_KIND), "0");
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_LIST_KEY), "") << "loopback is no broadcast adapter";
    EXPECT_TRUE(events.Snapshot().LastWholeList().first.empty());

    ASSERT_EQ(manager->OpenCamera(id), 0);
    EXPECT_EQ(manager->GetOpenedCameraIds(), std::vector<std::string>{id});
    ASSERT_EQ(manager->StartGrab(id), 0);
    EXPECT_TRUE(events.WaitUntil([](const Events& seen) { return seen.images >= 3; }, std::chrono::seconds(20)))
        << "no frames arrived";
    EXPECT_EQ(manager->StopGrab(id), 0);
    EXPECT_EQ(manager->CloseCamera(id), 0);
    EXPECT_TRUE(manager->GetOpenedCameraIds().empty());
}

TEST_F(DiscoveryGige, CameraBehindAVethIsAttachedToThatAdapter)
{
    DeviceFakeGigeOnVeth device("VB3GVVETH");
    std::string failure;
    VB3_REQUIRE(device.Start(failure), failure);
    GigeDiscoveryStage stage;
    DeviceManager* manager = stage.manager;
    DeviceEventRecorder& events = stage.events;

    std::string id = stage.WaitForListed(device.SerialNumber());
    ASSERT_FALSE(id.empty()) << "the pass never listed the camera";
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_IP), DeviceFakeGigeOnVeth::CAMERA_ADDRESS);
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_LIST_KEY), DeviceFakeGigeOnVeth::ADAPTER_KEY);
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_SAME_SEGMENT), "1");
    EXPECT_EQ(events.Snapshot().LastWholeList().first, std::vector<std::string>{DeviceFakeGigeOnVeth::ADAPTER_KEY});
    EXPECT_EQ(manager->GetCardInfo(DeviceFakeGigeOnVeth::ADAPTER_KEY, ViewerBiz3::CARD_IN_USE), "1");

    ASSERT_EQ(manager->OpenCamera(id), 0);
    ASSERT_EQ(manager->StartGrab(id), 0);
    EXPECT_TRUE(events.WaitUntil([](const Events& seen) { return seen.images >= 3; }, std::chrono::seconds(20)))
        << "no frames arrived";
    EXPECT_EQ(manager->CloseCamera(id), 0);
}

TEST_F(ForeignSubnetGige, CameraIsListedUnderItsAdapterAndGetsAForcedAddress)
{
    StartAndList(true);
    if (IsSkipped())
        return;
    DeviceManager* manager = stage->manager;
    ASSERT_EQ(id, "Far(VB3FAR)") << "named by the user-defined name of its discovery acknowledge";
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_LIST_KEY), GvcpResponderOnVeth::ADAPTER_KEY);
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_SAME_SEGMENT), "0");
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_IP), "10.99.0.5");
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_MASK), "255.255.255.0");
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_MAC), "02:00:00:77:00:05");
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_MODEL_NAME), "Responder");

    EXPECT_EQ(manager->ModifyCameraIP(id, "192.168.77.50", "255.255.255.0", "192.168.77.1", false), 0);
    std::vector<GvcpResponderOnVeth::ForceIp> commands = camera->ForceIpCommands();
    ASSERT_EQ(commands.size(), 1u);
    EXPECT_EQ(commands[0].flags & 0x01, 0x01) << "acknowledge required";
    EXPECT_EQ(commands[0].code, 0x0004);
    EXPECT_EQ(commands[0].length, 56);
    EXPECT_TRUE(std::equal(kForeignMac, kForeignMac + 6, commands[0].mac));
    EXPECT_EQ(commands[0].ip, "192.168.77.50");
    EXPECT_EQ(commands[0].mask, "255.255.255.0");
    EXPECT_EQ(commands[0].gateway, "192.168.77.1");
    EXPECT_TRUE(stage->events.WaitUntil(
        [&](const Events&) { return manager->GetCameraInfo(id, ViewerBiz3::CAM_IP) == "192.168.77.50"; },
        std::chrono::seconds(20)))
        << "the list is refreshed with the new address";
    EXPECT_EQ(manager->GetCameraInfo(id, ViewerBiz3::CAM_SAME_SEGMENT), "1");
}

TEST_F(ForeignSubnetGige, UnansweredForceIpFailsWithinTheGvcpTimeoutAndIsLogged)
{
    StartAndList(false);
    if (IsSkipped())
        return;
    ASSERT_FALSE(id.empty());
    CameraLogRecorder log;
    auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(stage->manager->ModifyCameraIP(id, "192.168.77.50", "255.255.255.0", "192.168.77.1", false), -11);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(4))
        << "one discovery window and four GVCP attempts of 250 ms";
    EXPECT_EQ(camera->ForceIpCommands().size(), 4u);
    EXPECT_EQ(log.Count("Set camera ip failed, ip = 192.168.77.50, mask = 255.255.255.0, gateway = 192.168.77.1, "
                        "ret = -11"),
              1u);
}
