// Records what the device manager tells the host: device-list, camera-identifier,
// image-mode, show-mode and image events.
// Images are released at once, as a host would after drawing them.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "ViewerBiz3Listeners.h"

class DeviceEventRecorder final : public ViewerBiz3::IDeviceListUpdate,
                                  public ViewerBiz3::ICameraIdUpdate,
                                  public ViewerBiz3::IImageModeUpdate,
                                  public ViewerBiz3::ISLImageShowModeUpdate,
                                  public ViewerBiz3::IImageUpdate {
public:
    struct DeviceList {
        int kind;
        std::vector<std::string> first;
        std::vector<std::string> second;
    };
    struct Events {
        std::vector<DeviceList> deviceLists;
        // "old id=new name", "key=mode", "id=mode"
        std::vector<std::string> cameraIds;
        std::vector<std::string> imageModes;
        std::vector<std::string> showModes;
        std::size_t images = 0;

        std::size_t WholeLists() const;
        // The last whole-list notification (kind 0); empty lists when none came.
        DeviceList LastWholeList() const;
    };

    // Registers with every list of the process's event manager; unregisters when destroyed.
    DeviceEventRecorder();
    ~DeviceEventRecorder() override;

    Events Snapshot() const;
    void Clear();

    void OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second) override;
    void OnCameraIdUpdate(std::string oldId, std::string newName) override;
    void OnImageModeUpdate(std::string cameraKey, int imageMode) override;
    void OnSLImageShowModeUpdate(std::string cameraId, int showMode) override;
    void OnImageUpdate(std::string cameraKey, void* image, int extra1, int extra2) override;

private:
    template <typename Change>
    void Record(Change change);

    mutable std::mutex m_mutex;
    Events m_events;
};
