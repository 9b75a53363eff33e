// A stand-in for the device manager behind the camera seam: it records every call a camera
// makes, owns the cameras given to it and, like the real manager, deletes a camera inside
// RemoveOpenedCamera. Images are released as a host would, optionally after holding them.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "camera/CameraHost.h"

class CameraTestHost final : public CameraHost {
public:
    struct ImageEvent {
        std::string key;
        bool withImage;
        int extra1;
        int extra2;
    };
    struct StatisticEvent {
        std::string key;
        bool flag;
    };
    struct DeviceListEvent {
        std::string listKey;
        std::string key;
        bool withArguments;
        // What the named camera, if the host owns it, tells a list built now.
        std::string available;
    };

    // Registers itself as the process's camera host.
    CameraTestHost();
    // Deletes the cameras it still owns, then unregisters.
    ~CameraTestHost();
    CameraTestHost(const CameraTestHost&) = delete;
    CameraTestHost& operator=(const CameraTestHost&) = delete;

    // The host owns the camera from now on, under the camera's key.
    template <typename CameraType>
    CameraType* Adopt(std::unique_ptr<CameraType> camera)
    {
        CameraType* raw = camera.get();
        AdoptCamera(std::unique_ptr<Camera>(camera.release()));
        return raw;
    }
    bool Owns(const std::string& key) const;

    // Each received image is kept this long before it is released (a slow listener).
    void SetImageHoldTime(std::chrono::milliseconds holdTime);
    // Runs on the notifying thread for every received image, before it is released.
    void SetImageObserver(std::function<void(ZYLGENICAM::IImage*)> observer);

    std::vector<ImageEvent> Images() const;
    std::size_t ImagesWithPicture() const;
    std::vector<StatisticEvent> Statistics() const;
    std::vector<DeviceListEvent> DeviceLists() const;
    std::vector<std::string> Removed() const;
    std::vector<Camera*> AddedCLCameras() const;
    std::vector<int> Refreshes() const;

    std::size_t NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2) override;
    void NotifyAcqStatisticUpdate(std::string key, bool flag) override;
    void NotifyDeviceListUpdate(std::string listKey, std::string key) override;
    void NotifyDeviceListUpdate() override;
    void RemoveOpenedCamera(std::string key) override;
    void AddCLCamera(Camera* camera) override;
    int RefreshDeviceList(int types) override;

private:
    void AdoptCamera(std::unique_ptr<Camera> camera);

    mutable std::mutex m_mutex;
    std::map<std::string, std::unique_ptr<Camera>> m_cameras;
    std::chrono::milliseconds m_holdTime{0};
    std::function<void(ZYLGENICAM::IImage*)> m_imageObserver;
    std::vector<ImageEvent> m_images;
    std::vector<StatisticEvent> m_statistics;
    std::vector<DeviceListEvent> m_deviceLists;
    std::vector<std::string> m_removed;
    std::vector<Camera*> m_addedCLCameras;
    std::vector<int> m_refreshes;
};
