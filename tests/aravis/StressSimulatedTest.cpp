// Host threads call the exported functions at random on the simulated cameras (transport 8 only:
// nothing goes on a network); 10 s by default to keep the plain and sanitizer CI runs short.
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/common/StressApiOperations.h"

TEST(StressSimulated, HostThreadsOnSimulatedCamerasLeaveNothingBehind)
{
    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "1", 1);
    StressScene scene;
    scene.cameraIds = {"SimArea(SIM-AREA-01)", "SimAreaB(SIM-AREA-01)", "SimShowMode(SIM-SL-01)",
                       "SimProfile(F-SIM-01)", "SimProfileB(F-SIM-01)", "Nobody(0)"};
    scene.nodes.push_back({"AcquisitionFrameRate", {"50", "200"}});
    scene.transports = 8;
    StressSession session(scene);
    ASSERT_FALSE(HasFailure());
    session.Run(4, StressSeed(20261124), StressDuration(std::chrono::seconds(10)));
    session.Finish();
    unsetenv("VIEWERBIZ3_SIMULATED_CAMERAS");
}
