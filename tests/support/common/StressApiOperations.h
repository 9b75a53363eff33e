// A host's random calls through the exported functions, for the stress tests,
// and the listeners such a host keeps. Image and statistics listeners are not
// among the lists registered at random: those lists are walked without a lock
// while grabbing, so a host may change them only with every camera stopped.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ViewerBiz3.h"
#include "support/common/StressRun.h"

// Listens on every list a host may change at any time; counts what it hears.
class StressListener final : public ViewerBiz3::ITLTypeUpdate,
                             public ViewerBiz3::IDeviceListUpdate,
                             public ViewerBiz3::IFocusUpdate,
                             public ViewerBiz3::ILayoutUpdate,
                             public ViewerBiz3::IImageModeUpdate,
                             public ViewerBiz3::ISLImageShowModeUpdate,
                             public ViewerBiz3::IImportUpdate,
                             public ViewerBiz3::ILoggerUpdate,
                             public ViewerBiz3::IROIDrawUpdate,
                             public ViewerBiz3::ICorrectionUpdate,
                             public ViewerBiz3::ILangUpdate,
                             public ViewerBiz3::ICameraIdUpdate {
public:
    void OnTLTypeUpdate(unsigned long long) override { ++events; }
    void OnDeviceListUpdate(int, std::vector<std::string>, std::vector<std::string>) override { ++events; }
    void OnFocusUpdate(ViewerBiz3::FOCUS_TYPE, std::string) override { ++events; }
    void OnLayoutUpdate(ViewerBiz3::LAYOUT_TYPE) override { ++events; }
    void OnImageModeUpdate(std::string, int) override { ++events; }
    void OnSLImageShowModeUpdate(std::string, int) override { ++events; }
    void OnImportUpdate(std::string) override { ++events; }
    void OnLoggerUpdate(std::string source, std::string level, std::string message) override;
    void OnROIDrawUpdate(std::string, int, int, int, int, int, int&, bool&, int, int) override { ++events; }
    void OnCorrectionUpdate(std::string, int, float, void*) override { ++events; }
    void OnLangUpdate(std::string) override { ++events; }
    void OnCameraIdUpdate(std::string, std::string) override { ++events; }

    std::atomic<std::uint64_t> events{0};
    std::atomic<std::uint64_t> lossLines{0}; // "Camera is lost."
};

// Releases every frame at once, as a viewer does after drawing it.
class StressImageSink final : public ViewerBiz3::IImageUpdate, public ViewerBiz3::IAcqStatisticUpdate {
public:
    void OnImageUpdate(std::string cameraKey, void* image, int extra1, int extra2) override;
    void OnAcqStatisticUpdate(std::string, bool) override { ++statistics; }

    std::atomic<std::uint64_t> frames{0};
    std::atomic<std::uint64_t> statistics{0};
};

struct StressNode {
    std::string name;
    std::vector<std::string> values; // written at random
};

struct StressScene {
    std::vector<std::string> cameraIds; // the identifiers a host may use (some stale on purpose)
    // Rename pairs: a camera listed under first is renamed to the user name second.
    std::vector<std::pair<std::string, std::string>> renames;
    std::vector<StressNode> nodes;
    int refreshTypes = 0;
    unsigned long long transportMask = 0;
};

// How often the calls that change a camera's state succeeded.
struct StressOutcomes {
    std::atomic<std::uint64_t> opens{0};
    std::atomic<std::uint64_t> grabs{0};
    std::atomic<std::uint64_t> renames{0};
    void Print() const;
};

// Every operation a host may call at any time on `scene`; `listener` is registered and
// unregistered at random on its lists.
std::vector<StressOperation> StressApiOperations(const StressScene& scene, StressListener& listener,
                                                 StressOutcomes& outcomes);

// GetParamterInfo of every setting key, to compare a session's settings with a reload.
std::vector<std::string> StressAllParameters();

// After the workers: stops and closes every opened camera, then UnInit, each phase told to the
// watchdog. Returns the settings as the session left them (StressAllParameters before UnInit).
std::vector<std::string> StressCloseAllAndUnInit(StressWatchdog& watchdog);

// The lists of StressListener that a host may change at any time, registered or removed at once.
void StressRegisterAll(StressListener& listener);
void StressUnRegisterAll(StressListener& listener);
