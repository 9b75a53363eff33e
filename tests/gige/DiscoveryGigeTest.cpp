// GigE discovery as a host sees it: a camera behind a veth is listed with its addresses under the
// adapter that heard it; one on a foreign subnet gets its address forced.
#include <string>

#include "gige/GigeHostTest.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/GvcpResponderOnVeth.h"
#include "support/common/NetworkNamespace.h"

using namespace ViewerBiz3;

using DiscoveryGige = GigeHostTest;

TEST_F(DiscoveryGige, CameraBehindAVethIsAttachedToThatAdapterAndStreams)
{
    NetworkNamespace cameraSpace({});
    VB3_REQUIRE(cameraSpace.LinkFromCaller("vb3g0", "169.254.30.1/16", "vb3g1", "169.254.30.2/16"),
                "cannot build a veth link to the camera's namespace " << cameraSpace.Failure());
    FakeGigeCamera camera("VB3GVVETH", "169.254.30.2", cameraSpace.Name());
    ASSERT_TRUE(camera.Start());
    const std::string id = WaitForListed(camera.SerialNumber());
    ASSERT_EQ(id, "Fake(VB3GVVETH)") << "named by its model, as it has no user-defined name";
    EXPECT_EQ(GetCameraInfo(id, CAM_AVAILABLE), "1") << "nobody controls it";
    EXPECT_EQ(GetCameraInfo(id, CAM_IP), "169.254.30.2");
    EXPECT_EQ(GetCameraInfo(id, CAM_LIST_KEY), "vb3g0[169.254.30.1]");
    EXPECT_EQ(GetCameraInfo(id, CAM_SAME_SEGMENT), "1");
    EXPECT_EQ(GetCardInfo("vb3g0[169.254.30.1]", CARD_IN_USE), "1");

    ASSERT_EQ(OpenCamera(id), 0);
    ASSERT_EQ(StartGrab(id), 0);
    EXPECT_TRUE(WaitUntil([&] { return FrameCount(id) >= 3; })) << "no frames arrived";
    EXPECT_EQ(CloseCamera(id), 0);
}

// Forcing the address of a camera that does not answer fails after four tries; once it answers,
// the camera moves.
TEST_F(DiscoveryGige, CameraOnAForeignSubnetIsListedUnderItsAdapterAndGetsAForcedAddress)
{
    GvcpResponderOnVeth camera;
    std::string failure;
    VB3_REQUIRE(camera.Start(failure), failure);
    const std::string id = WaitForListed("VB3FAR");
    ASSERT_EQ(id, "Far(VB3FAR)") << "named by the user-defined name of its discovery acknowledge";
    EXPECT_EQ(GetCameraInfo(id, CAM_LIST_KEY), GvcpResponderOnVeth::ADAPTER_KEY);
    EXPECT_EQ(GetCameraInfo(id, CAM_SAME_SEGMENT), "0");
    EXPECT_EQ(GetCameraInfo(id, CAM_IP), "10.99.0.5");
    EXPECT_EQ(GetCameraInfo(id, CAM_MASK), "255.255.255.0");
    EXPECT_EQ(GetCameraInfo(id, CAM_MAC), "02:00:00:77:00:05");
    EXPECT_EQ(GetCameraInfo(id, CAM_MODEL_NAME), "Responder");

    EXPECT_EQ(ModifyCameraIp(id, "192.168.77.50", "255.255.255.0", "192.168.77.1", false), -11);
    EXPECT_EQ(camera.ForceIpCommands(), 4);
    EXPECT_EQ(m_log.Count("Set camera ip failed, ip = 192.168.77.50, mask = 255.255.255.0, gateway = 192.168.77.1, "
                          "ret = -11"),
              1u);

    camera.AcknowledgeForceIp();
    ASSERT_EQ(ModifyCameraIp(id, "192.168.77.50", "255.255.255.128", "192.168.77.1", false), 0);
    EXPECT_EQ(camera.ForceIpCommands(), 5);
    // The responder answers discovery with what the command carried.
    EXPECT_TRUE(WaitUntil([&] { return GetCameraInfo(id, CAM_IP) == "192.168.77.50"; }))
        << "the list is refreshed with the new address";
    EXPECT_EQ(GetCameraInfo(id, CAM_MASK), "255.255.255.128");
    EXPECT_EQ(GetCameraInfo(id, CAM_GATEWAY), "192.168.77.1");
    EXPECT_EQ(GetCameraInfo(id, CAM_SAME_SEGMENT), "1");
}
