// A host's random calls through the exported functions for the stress tests, and its listeners.
// Image and statistics listeners are never changed at random: those lists are walked without a lock
// while grabbing, so a host may change them only with every camera stopped.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ViewerBiz3.h"
#include "ZylImage.h"
#include "support/common/ApplicationDirectoryScope.h"
#include "support/common/TempDirectory.h"

// Listens on a sample of the lists a host may change at any time; counts the lost cameras it is
// told of.
class StressListener final : public ViewerBiz3::IDeviceListUpdate,
                             public ViewerBiz3::ILoggerUpdate,
                             public ViewerBiz3::IROIDrawUpdate,
                             public ViewerBiz3::ICameraIdUpdate {
public:
    void OnDeviceListUpdate(int, std::vector<std::string>, std::vector<std::string>) override {}
    void OnLoggerUpdate(std::string, std::string, std::string message) override
    {
        lossLines += message == "Camera is lost." ? 1 : 0;
    }
    void OnROIDrawUpdate(std::string, int, int, int, int, int, int&, bool&, int, int) override {}
    void OnCameraIdUpdate(std::string, std::string) override {}

    std::atomic<std::uint64_t> lossLines{0};
};

// Releases every frame at once, as a viewer does after drawing it.
class StressImageSink final : public ViewerBiz3::IImageUpdate, public ViewerBiz3::IAcqStatisticUpdate {
public:
    void OnImageUpdate(std::string, void* image, int, int) override
    {
        if (image != nullptr) {
            ++frames;
            static_cast<ZYLGENICAM::IImage*>(image)->Release();
        }
    }
    void OnAcqStatisticUpdate(std::string, bool) override {}

    std::atomic<std::uint64_t> frames{0};
};

struct StressScene {
    // The identifiers a host may use, the first listed from the start (some stale on purpose); a
    // camera is renamed to the names listed for its serial number.
    std::vector<std::string> cameraIds;
    // Features and the values written to them at random.
    std::vector<std::pair<std::string, std::vector<std::string>>> nodes = {
        {"Width", {"320", "640", "99999"}},
        {"Height", {"240", "480"}},
        {"AcquisitionMode", {"Continuous", "NoSuchMode"}},
        {"NoSuchFeature", {"1"}}};
    int transports = 0;
};

// VB3_STRESS_SEED when set, else the default; printed so that a failure can be replayed.
std::uint32_t StressSeed(std::uint32_t defaultSeed);
// VB3_STRESS_SECONDS when set, else the default.
std::chrono::seconds StressDuration(std::chrono::seconds defaultDuration);

// One stress session of host threads on a scene, from the threads the process had before Init to
// the settings file read back after UnInit.
class StressSession {
public:
    // A first Init and UnInit lets runtimes (GLib, sanitizers) start their lifelong threads before
    // the count; then Init in the session's own directory, list the cameras, register the listeners.
    explicit StressSession(StressScene scene);
    // Host threads call the exported functions at random for `duration`.
    void Run(std::size_t threads, std::uint32_t seed, std::chrono::seconds duration);
    // Close every camera and UnInit: no thread may be left and the settings must read back the same.
    void Finish();

private:
    StressScene m_scene;
    TempDirectory m_directory;
    std::optional<ApplicationDirectoryScope> m_applicationDirectory;
    std::size_t m_threadsBefore = 0;
    StressListener m_listener;
    StressImageSink m_sink;
    std::atomic<std::uint64_t> m_opens{0};
    std::atomic<std::uint64_t> m_grabs{0};
};
