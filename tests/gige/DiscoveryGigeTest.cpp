// The real discovery pass against a simulated GigE Vision camera in its own
// process on 127.0.0.1, inside this program's private network namespace:
// listed, opened by its identifier and streamed like any camera.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "ZylSdk.h"
#include "device/DeviceManager.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/DeviceEventRecorder.h"
#include "support/common/DeviceFakeGigeOnVeth.h"
#include "support/common/FakeGigeCamera.h"
#include "support/common/TempDirectory.h"

extern bool g_privateNetworkNamespace;
extern std::string g_privateNetworkNamespaceFailure;

using Events = DeviceEventRecorder::Events;

namespace {

// The identifier of the listed camera whose serial number is given, or empty.
std::string ListedIdentifier(const Events& events, const std::string& serialNumber)
{
    std::vector<std::string> keys = events.LastWholeList().second;
    auto found = std::find_if(keys.begin(), keys.end(), [&](const std::string& key) {
        const std::string suffix = "(" + serialNumber + ")";
        return key.size() > suffix.size() && key.compare(key.size() - suffix.size(), suffix.size(), suffix) == 0;
    });
    return found == keys.end() ? std::string() : *found;
}

class DiscoveryGige : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!g_privateNetworkNamespace)
            GTEST_SKIP() << "needs a private network namespace: " << g_privateNetworkNamespaceFailure;
    }
};

// The library side of a test, set up once its camera is running: the camera SDK, the device
// manager looking for GigE cameras only, an event recorder and a temporary application
// directory. Released when the test ends.
class GigeDiscoveryStage {
public:
    GigeDiscoveryStage()
    {
        ZYLGENICAM::Init();
        manager = DeviceManager::getInstance();
        m_applicationDirectory = std::make_unique<ApplicationDirectoryScope>(m_directory.Path());
        manager->SetTLTypeList(ZYLGENICAM::TL_GIGE);
    }
    ~GigeDiscoveryStage()
    {
        manager->Release();
        ZYLGENICAM::UnInit();
    }
    GigeDiscoveryStage(const GigeDiscoveryStage&) = delete;
    GigeDiscoveryStage& operator=(const GigeDiscoveryStage&) = delete;

    DeviceEventRecorder events;
    DeviceManager* manager = nullptr;

private:
    TempDirectory m_directory;
    std::unique_ptr<ApplicationDirectoryScope> m_applicationDirectory;
};

} // namespace

TEST_F(DiscoveryGige, SimulatedCameraIsDiscoveredOpenedAndStreamed)
{
    if (!FakeGigeCamera::ProgramAvailable())
        GTEST_SKIP() << FakeGigeCamera::kProgram << " (aravis-tools) is not installed";
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
    if (!device.Start(failure))
        GTEST_SKIP() << failure;
    GigeDiscoveryStage stage;
    DeviceManager* manager = stage.manager;
    DeviceEventRecorder& events = stage.events;

    std::string id;
    for (int attempt = 0; attempt < 10 && id.empty(); ++attempt) {
        std::size_t lists = events.Snapshot().WholeLists();
        manager->RefreshDeviceList(ZYLGENICAM::TL_GIGE);
        ASSERT_TRUE(events.WaitUntil([lists](const Events& seen) { return seen.WholeLists() > lists; },
                                     std::chrono::seconds(20)));
        id = ListedIdentifier(events.Snapshot(), device.SerialNumber());
    }
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
