// A stand-in for the device manager behind the camera seam: it records every call a camera
// makes, owns the cameras given to it and, like the real manager, deletes a camera inside
// RemoveOpenedCamera. Images are released as a host would, optionally after holding them.
#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "camera/Camera.h"
#include "camera/CameraHost.h"
#include "support/common/CameraHandles.h"

// The frame count StartGrab takes as "no limit".
constexpr unsigned long long continuousGrab = 4294967295ull;

class CameraTestHost final : public CameraHost {
public:
    struct ImageEvent {
        std::string key;
        bool withImage;
        int extra1;
        int extra2;
    };
    struct DeviceListEvent {
        std::string listKey;
        std::string key;
        bool withArguments;
        // What the named camera, if the host owns it, tells a list built now.
        std::string available;
    };
    // Everything the cameras told the host so far.
    struct Record {
        std::vector<ImageEvent> images;
        // The keys of the statistics updates.
        std::vector<std::string> statistics;
        std::vector<DeviceListEvent> deviceLists;
        std::vector<std::string> removed;
        std::vector<Camera*> addedCLCameras;
        std::vector<int> refreshes;
    };

    // Registers itself as the process's camera host.
    CameraTestHost() { SetCameraHost(this); }
    // Deletes the cameras it still owns, then unregisters.
    ~CameraTestHost();
    CameraTestHost(const CameraTestHost&) = delete;
    CameraTestHost& operator=(const CameraTestHost&) = delete;

    // A camera on the scripted device with this serial number, named and keyed as discovery
    // leaves it; the host owns it from now on.
    template <typename CameraType = Camera>
    CameraType* AddCamera(const std::string& serialNumber, const std::string& key, const std::string& listKey = "")
    {
        auto camera = std::make_unique<CameraType>(CreateCameraHandle(~0ull, serialNumber));
        camera->SetName(key);
        camera->SetKey(key);
        camera->SetListKey(listKey);
        CameraType* raw = camera.get();
        std::lock_guard<std::mutex> lock(m_mutex);
        m_cameras[key] = std::move(camera);
        return raw;
    }

    // Each received image is kept this long before it is released (a slow listener).
    void SetImageHoldTime(std::chrono::milliseconds holdTime) { m_holdTime.store(holdTime); }

    Record Recorded() const;
    std::size_t ImagesWithPicture() const;

    std::size_t NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2) override;
    void NotifyAcqStatisticUpdate(std::string key, bool) override { Append(m_record.statistics, key); }
    void NotifyDeviceListUpdate(std::string listKey, std::string key) override;
    void NotifyDeviceListUpdate() override { Append(m_record.deviceLists, {"", "", false, ""}); }
    void RemoveOpenedCamera(std::string key) override;
    void AddCLCamera(Camera* camera) override { Append(m_record.addedCLCameras, camera); }
    int RefreshDeviceList(int types) override
    {
        Append(m_record.refreshes, types);
        return 0;
    }

private:
    template <typename Event>
    void Append(std::vector<Event>& events, typename std::vector<Event>::value_type event)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        events.push_back(std::move(event));
    }

    mutable std::mutex m_mutex;
    std::map<std::string, std::unique_ptr<Camera>> m_cameras;
    std::atomic<std::chrono::milliseconds> m_holdTime{std::chrono::milliseconds(0)};
    Record m_record;
};
