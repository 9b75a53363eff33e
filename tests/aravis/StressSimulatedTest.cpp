// Several host threads call the exported functions at random on the three
// simulated cameras (transport 8 only: nothing goes on a network). Afterwards
// every camera is closed, no library thread is left and the settings file
// holds what the host set.
//
// VB3_STRESS_SECONDS sets the duration (default 10 s, so that the three CI
// variants, plain and two sanitizers, stay within the CI budget; give more for a
// soak run); VB3_STRESS_SEED replays a run.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "ViewerBiz3.h"
#include "log/Log.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/StressApiOperations.h"
#include "support/common/ProcessThreads.h"
#include "support/common/StressRun.h"
#include "support/common/TempDirectory.h"
#include "support/common/TextFile.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;

namespace {

constexpr std::size_t HostThreads = 4;
constexpr int SimulatedTransport = 8;

StressScene SimulatedScene()
{
    StressScene scene;
    scene.cameraIds = {"SimArea(SIM-AREA-01)", "SimAreaB(SIM-AREA-01)", "SimShowMode(SIM-SL-01)",
                       "SimProfile(F-SIM-01)", "SimProfileB(F-SIM-01)", "Nobody(0)"};
    scene.renames = {{"SimArea(SIM-AREA-01)", "SimAreaB"},
                     {"SimAreaB(SIM-AREA-01)", "SimArea"},
                     {"SimProfile(F-SIM-01)", "SimProfileB"},
                     {"SimProfileB(F-SIM-01)", "SimProfile"}};
    scene.nodes = {{"Width", {"320", "640", "99999"}},
                   {"Height", {"240", "480"}},
                   {"AcquisitionFrameRate", {"50", "200"}},
                   {"AcquisitionMode", {"Continuous", "NoSuchMode"}},
                   {"NoSuchFeature", {"1"}}};
    scene.refreshTypes = SimulatedTransport;
    scene.transportMask = SimulatedTransport;
    return scene;
}

bool WaitForListed(const std::string& id)
{
    return WaitUntil([&] { return !GetCameraInfo(id, CAM_NAME).empty(); });
}

} // namespace

TEST(StressSimulated, HostThreadsOnSimulatedCamerasLeaveNothingBehind)
{
    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
    const std::uint32_t seed = StressSeed(20261124);
    const std::chrono::seconds duration = StressDuration(std::chrono::seconds(10));
    TempDirectory directory;
    WriteTextFile(directory.File("Configuration.ini"), "[User]\n");
    StressWatchdog watchdog(HostThreads, std::chrono::seconds(30));

    // A first cycle lets the runtimes (GLib, sanitizers) start the threads they keep for the
    // whole process.
    ASSERT_EQ(-1, Init());
    ASSERT_EQ(0, SetTLTypeList(SimulatedTransport));
    ASSERT_EQ(0, UnInit());
    WaitForProcessThreadCount(0, std::chrono::seconds(1));
    const std::size_t threadsBefore = ProcessThreadCount();

    ASSERT_EQ(-1, Init());
    ASSERT_EQ(0, SetTLTypeList(SimulatedTransport));
    auto applicationDirectory = std::make_unique<ApplicationDirectoryScope>(directory.Path());
    Utilities::StartLogFile(directory.Path(), 1 << 20);
    ASSERT_EQ(0, RefreshCameraList(SimulatedTransport));
    ASSERT_TRUE(WaitForListed("SimArea(SIM-AREA-01)"));

    StressListener listener;
    StressImageSink sink;
    StressOutcomes outcomes;
    ASSERT_EQ(0, RegisterImageUpdateListener("", &sink));
    ASSERT_EQ(0, RegisterAcqStatisticUpdateListener(&sink));
    StressRegisterAll(listener);

    const StressScene scene = SimulatedScene();
    const StressTotals totals =
        RunStressWorkers(HostThreads, seed, duration, StressApiOperations(scene, listener, outcomes), watchdog);

    const std::vector<std::string> settings = StressCloseAllAndUnInit(watchdog);

    std::printf("stress: %llu frames delivered and released, %llu host events\n",
                static_cast<unsigned long long>(sink.frames.load()),
                static_cast<unsigned long long>(listener.events.load()));
    outcomes.Print();
    EXPECT_GT(totals.operations, 0u);
    EXPECT_GT(outcomes.opens.load(), 0u);
    EXPECT_TRUE(WaitForProcessThreadCount(threadsBefore, std::chrono::seconds(10)))
        << ProcessThreadCount() << " threads after UnInit, " << threadsBefore << " before Init";

    // The settings file reads back as the host left it.
    ASSERT_EQ(-1, Init());
    ASSERT_EQ(0, SetTLTypeList(SimulatedTransport));
    applicationDirectory = std::make_unique<ApplicationDirectoryScope>(directory.Path());
    ASSERT_EQ(-1, Init());
    EXPECT_EQ(settings, StressAllParameters());
    EXPECT_EQ(0, UnInit());
    unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
}
