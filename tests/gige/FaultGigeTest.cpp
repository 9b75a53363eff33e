// A GigE Vision camera process killed or frozen while the library grabs from it: the library
// notices the loss on its own, drops the camera, keeps answering, and lists the camera again once
// its process is back.
#include <algorithm>
#include <atomic>
#include <string>

#include "ZylImage.h"
#include "gige/GigeHostTest.h"
#include "support/common/FakeGigeCamera.h"

using namespace ViewerBiz3;

namespace {

const std::string SimulatedAreaCamera = "SimArea(SIM-AREA-01)";

// Hands every image back at once but the one it holds, as a viewer holds the frame it shows.
class FrameHolder final : public IImageUpdate {
public:
    void OnImageUpdate(std::string, void* image, int, int) override
    {
        ZYLGENICAM::IImage* expected = nullptr;
        if (image != nullptr && !held.compare_exchange_strong(expected, static_cast<ZYLGENICAM::IImage*>(image)))
            static_cast<ZYLGENICAM::IImage*>(image)->Release();
    }

    std::atomic<ZYLGENICAM::IImage*> held{nullptr};
};

bool IsOpened(const std::string& id)
{
    const auto ids = GetOpenedCameraIds();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

} // namespace

// The library grabbing from one simulated GigE Vision camera in its own process, with the
// simulated area camera listed too.
class FaultGige : public GigeHostTest {
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(GigeHostTest::SetUp());
        if (IsSkipped())
            return;
        ASSERT_TRUE(m_camera.Start());
        ASSERT_EQ(0, SetTLTypeList(GigE | Simulated));
        m_id = WaitForListed(m_camera.SerialNumber(), GigE | Simulated);
        ASSERT_EQ(0, OpenCamera(m_id));
        ASSERT_EQ(0, StartGrab(m_id));
        ASSERT_TRUE(WaitUntil([&] { return FrameCount(m_id) >= 3; })) << "frames arrive";
    }

    // From the fault on, "Camera is lost." is logged once more and the camera leaves the opened ones.
    void ExpectLossNoticedAndCameraDropped()
    {
        const std::size_t lossesBefore = m_log.Count("Camera is lost.");
        ASSERT_TRUE(WaitUntil([&] { return m_log.Count("Camera is lost.") > lossesBefore; })) << "loss not noticed";
        ASSERT_TRUE(WaitUntil([&] { return !IsOpened(m_id); })) << "the camera is still open";
    }

    FakeGigeCamera m_camera{"VB3FAULT1"};
    FrameHolder m_frames; // outlives TearDown, which closes the cameras that deliver to it
    std::string m_id;
};

TEST_F(FaultGige, AKilledCameraIsNoticedDroppedListedAgainWhenBackAndUnInitAfterALossSucceeds)
{
    // Another camera grabs all along.
    ASSERT_EQ(0, OpenCamera(SimulatedAreaCamera));
    ASSERT_EQ(0, StartGrab(SimulatedAreaCamera));

    m_camera.Kill();
    ASSERT_NO_FATAL_FAILURE(ExpectLossNoticedAndCameraDropped());
    const int otherCameraFrames = FrameCount(SimulatedAreaCamera);
    EXPECT_TRUE(WaitUntil([&] { return FrameCount(SimulatedAreaCamera) >= otherCameraFrames + 3; }))
        << "the other camera keeps streaming";
    EXPECT_EQ(-1, StartGrab(m_id)) << "the library keeps answering";

    ASSERT_TRUE(m_camera.Start());
    ASSERT_EQ(m_id, WaitForListed(m_camera.SerialNumber())) << "the restarted camera is listed again";
    // Several watchdog rounds have passed since the loss.
    EXPECT_EQ(1u, m_log.Count("Camera is lost.")) << "the loss is logged once";

    // A viewer that quits right after a cable pull.
    ASSERT_EQ(0, OpenCamera(m_id));
    ASSERT_EQ(0, StartGrab(m_id));
    m_camera.Kill();
    ASSERT_NO_FATAL_FAILURE(ExpectLossNoticedAndCameraDropped());
    m_initialized = false;
    EXPECT_EQ(0, UnInit());
}

// A viewer that closes the camera right after a cable pull: the frame it still shows may hold the
// last reference to the dead device's stream.
TEST_F(FaultGige, CloseRightAfterALossSucceeds)
{
    ASSERT_EQ(0, RegisterImageUpdateListener(m_id, &m_frames));
    ASSERT_TRUE(WaitUntil([&] { return m_frames.held.load() != nullptr; }));
    m_camera.Kill();
    EXPECT_EQ(0, CloseCamera(m_id));
    EXPECT_FALSE(IsOpened(m_id));
    m_frames.held.load()->Release();
    EXPECT_EQ(0, UnRegisterImageUpdateListener(m_id, &m_frames));
}

// A camera that stops answering without a word (a pulled cable) is found out by the watchdog's own
// probe; once it answers again it can be opened and streams again.
TEST_F(FaultGige, ACameraThatFallsSilentIsNoticedDroppedAndUsableWhenItAnswersAgain)
{
    m_camera.Freeze();
    ASSERT_NO_FATAL_FAILURE(ExpectLossNoticedAndCameraDropped());
    EXPECT_EQ(-1, StartGrab(m_id));

    m_camera.Thaw();
    ASSERT_EQ(m_id, WaitForListed(m_camera.SerialNumber())) << "the camera that answers again is listed again";
    ASSERT_TRUE(WaitUntil([&] { return OpenCamera(m_id) == 0; })) << "the camera can be opened again";
    const int framesBefore = FrameCount(m_id);
    ASSERT_EQ(0, StartGrab(m_id));
    EXPECT_TRUE(WaitUntil([&] { return FrameCount(m_id) >= framesBefore + 3; })) << "frames arrive again";
}
