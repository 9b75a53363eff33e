#include "support/common/StressApiOperations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <thread>

#include "log/Log.h"
#include "support/common/ProcessThreads.h"
#include "support/common/TextFile.h"
#include "support/common/WaitUntil.h"

using namespace ViewerBiz3;

namespace {

using Call = std::function<void(std::mt19937& random)>;

template <typename Item>
const Item& PickFrom(const std::vector<Item>& items, std::mt19937& random)
{
    return items[std::uniform_int_distribution<std::size_t>(0, items.size() - 1)(random)];
}

int PickNumber(std::mt19937& random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

// Lets the call through at most once a period over all threads.
Call Throttled(std::chrono::milliseconds period, Call call)
{
    auto last = std::make_shared<std::atomic<std::chrono::steady_clock::rep>>(0);
    const auto ticks = std::chrono::duration_cast<std::chrono::steady_clock::duration>(period).count();
    return [=](std::mt19937& random) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        auto previous = last->load();
        if (now - previous >= ticks && last->compare_exchange_strong(previous, now)) {
            call(random);
        }
    };
}

// Registers the listener on, or removes it from, a sample of the lists (they share their code);
// 0 when every call succeeded.
int ChangeListeners(StressListener& listener, bool add)
{
    return (add ? RegisterDeviceListUpdateListener : UnRegisterDeviceListUpdateListener)(&listener) +
           (add ? RegisterLoggerUpdateListener : UnRegisterLoggerUpdateListener)(&listener) +
           (add ? RegisterROIUpdateListener : UnRegisterROIUpdateListener)(&listener) +
           (add ? RegisterCameraIdUpdateListener : UnRegisterCameraIdUpdateListener)(&listener);
}

// Every setting, to compare a session's settings with a reload.
std::vector<std::string> AllParameters()
{
    std::vector<std::string> values;
    for (int key = 0; key <= 33; ++key) {
        values.push_back(GetParamterInfo(static_cast<PARAMETER_INFO>(key)));
    }
    return values;
}

struct StressOperation {
    const char* name;
    double weight; // relative chance of being picked
    Call run;
};

// Runs `workers` threads, each with its own generator seeded from `seed`, calling operations picked
// by weight until `duration` has passed.
void RunWorkers(std::size_t workers, std::uint32_t seed, std::chrono::seconds duration,
                const std::vector<StressOperation>& operations)
{
    std::vector<double> weights(operations.size());
    std::transform(operations.begin(), operations.end(), weights.begin(),
                   [](auto& operation) { return operation.weight; });
    std::vector<std::atomic<const char*>> current(workers);
    std::atomic<std::size_t> finished{0};
    const auto deadline = std::chrono::steady_clock::now() + duration;
    std::vector<std::thread> threads;
    for (std::size_t index = 0; index < workers; ++index) {
        current[index].store("starting");
        threads.emplace_back([&, index] {
            std::mt19937 random(seed + static_cast<std::uint32_t>(index) * 7919u);
            std::discrete_distribution<std::size_t> pick(weights.begin(), weights.end());
            while (std::chrono::steady_clock::now() < deadline) {
                const StressOperation& operation = operations[pick(random)];
                current[index].store(operation.name);
                operation.run(random);
            }
            ++finished;
        });
    }
    // A deadlock cannot be failed gracefully: the stuck threads hold the library's locks.
    if (!WaitUntil([&] { return finished.load() == workers; }, duration + std::chrono::seconds(30))) {
        for (std::size_t index = 0; index < workers; ++index) {
            std::fprintf(stderr, "stress worker %zu stuck in %s\n", index, current[index].load());
        }
        std::abort();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace

std::uint32_t StressSeed(std::uint32_t defaultSeed)
{
    const char* text = std::getenv("VB3_STRESS_SEED");
    const auto seed = text != nullptr ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : defaultSeed;
    std::printf("stress seed %u (VB3_STRESS_SEED replays a run)\n", seed);
    std::fflush(stdout); // seen even when the run aborts
    return seed;
}

std::chrono::seconds StressDuration(std::chrono::seconds defaultDuration)
{
    const char* text = std::getenv("VB3_STRESS_SECONDS");
    return text != nullptr ? std::chrono::seconds(std::strtol(text, nullptr, 10)) : defaultDuration;
}

StressSession::StressSession(StressScene scene) : m_scene(std::move(scene))
{
    WriteTextFile(m_directory.File("Configuration.ini"), "[User]\n");
    EXPECT_EQ(-1, Init());
    EXPECT_EQ(0, SetTLTypeList(m_scene.transports));
    EXPECT_EQ(0, UnInit());
    WaitForProcessThreadCount(0, std::chrono::seconds(1));
    m_threadsBefore = ProcessThreadCount();

    EXPECT_EQ(-1, Init());
    EXPECT_EQ(0, SetTLTypeList(m_scene.transports));
    m_applicationDirectory.emplace(m_directory.Path());
    Utilities::StartLogFile(m_directory.Path(), 1 << 20);
    EXPECT_EQ(0, RefreshCameraList(m_scene.transports));
    EXPECT_TRUE(WaitUntil([this] { return !GetCameraInfo(m_scene.cameraIds.front(), CAM_NAME).empty(); }));
    // One registration: the identifier is not kept, the sink hears every camera.
    EXPECT_EQ(0, RegisterImageUpdateListener("", &m_sink));
    EXPECT_EQ(0, RegisterAcqStatisticUpdateListener(&m_sink));
    EXPECT_EQ(0, ChangeListeners(m_listener, true));
}

void StressSession::Finish()
{
    for (const std::string& id : GetOpenedCameraIds()) {
        StopGrab(id);
        // A loss noticed meanwhile drops the camera itself: then it is unknown.
        const int closed = CloseCamera(id);
        EXPECT_TRUE(closed == 0 || closed == -1) << id << ": " << closed;
    }
    EXPECT_TRUE(GetOpenedCameraIds().empty());
    const std::vector<std::string> settings = AllParameters();
    EXPECT_EQ(0, UnInit());
    EXPECT_GT(m_opens.load(), 0u);
    EXPECT_GT(m_grabs.load(), 0u);
    EXPECT_GT(m_sink.frames.load(), 0u);
    EXPECT_TRUE(WaitForProcessThreadCount(m_threadsBefore, std::chrono::seconds(10)))
        << ProcessThreadCount() << " threads after UnInit, " << m_threadsBefore << " before Init";

    // The settings file reads back as the host left it.
    ASSERT_EQ(-1, Init());
    ASSERT_EQ(0, SetTLTypeList(m_scene.transports));
    m_applicationDirectory.emplace(m_directory.Path());
    ASSERT_EQ(-1, Init());
    EXPECT_EQ(settings, AllParameters());
    EXPECT_EQ(0, UnInit());
}

void StressSession::Run(std::size_t threads, std::uint32_t seed, std::chrono::seconds duration)
{
    auto id = [this](std::mt19937& random) { return PickFrom(m_scene.cameraIds, random); };
    // Closing and stopping happen a few times a second whatever the call rate, so cameras stay
    // open and grabbing for a second or more: long enough to deliver frames and for the
    // library to notice a loss on its own.
    const std::vector<StressOperation> operations = {
        {"RefreshCameraList", 2,
         [this](auto&) {
             SetTLTypeList(m_scene.transports);
             RefreshCameraList(m_scene.transports);
         }},
        {"OpenCamera", 3, [this, id](auto& r) { m_opens += OpenCamera(id(r)) == 0 ? 1 : 0; }},
        {"CloseCamera", 1, Throttled(std::chrono::milliseconds(400), [id](auto& r) { CloseCamera(id(r)); })},
        {"StartGrab", 3, [this, id](auto& r) { m_grabs += StartGrab(id(r)) == 0 ? 1 : 0; }},
        {"StopGrab", 1, Throttled(std::chrono::milliseconds(250), [id](auto& r) { StopGrab(id(r)); })},
        {"GetCameraInfo", 1, [id](auto& r) { GetCameraInfo(id(r), CAM_INFO(PickNumber(r, -1, 70))); }},
        {"SetCameraInfo", 1,
         [id](auto& r) { SetCameraInfo(id(r), CAM_INFO(PickNumber(r, 40, 43)), std::to_string(r())); }},
        {"CameraNodeValue", 2,
         [this, id](auto& r) {
             const auto& node = PickFrom(m_scene.nodes, r);
             std::string value = PickFrom(node.second, r);
             SetCameraNodeValue(id(r), node.first, value);
             GetCameraNodeValue(id(r), node.first, value);
         }},
        {"SetFocus", 1, [id](auto& r) { SetFocus(FOCUS_TYPE(PickNumber(r, 0, 4)), id(r)); }},
        {"ModifyCameraId", 1,
         [id](auto& r) {
             // To a name listed for the same serial number, so that the camera stays within reach.
             const std::string from = id(r);
             std::string to = id(r);
             while (to.substr(to.find('(')) != from.substr(from.find('('))) {
                 to = id(r);
             }
             ModifyCameraId(from, to.substr(0, to.find('(')));
         }},
        {"ImageModes", 2,
         [id](auto& r) {
             SetCameraImageMode(id(r), PickNumber(r, 0, 2), r() % 2 == 0);
             SetSLImageShowMode(id(r), PickNumber(r, 0, 3));
             GetCameraImageMode(id(r));
             GetSLImageShowMode(id(r));
         }},
        {"ParamterInfo", 2,
         [](auto& r) {
             SetParamterInfo(PARAMETER_INFO(PickNumber(r, 0, 33)), "value" + std::to_string(r() % 1000));
             GetParamterInfo(PARAMETER_INFO(PickNumber(r, 0, 33)));
         }},
        {"ChangeListeners", 1, [this](auto& r) { ChangeListeners(m_listener, r() % 2 == 0); }},
        {"HostRelays", 1,
         [id](auto& r) {
             int index = 0;
             bool result = false;
             DrawROI(id(r), 1, 2, 3, 4, index, result, 0, 0);
             VLogInfo("stress", "host line", static_cast<int>(r() % 2));
         }},
    };
    RunWorkers(threads, seed, duration, operations);
}
