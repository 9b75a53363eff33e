// Camera Link: frame-grabber cards, the cameras behind them and serial-only
// cameras, their opening and closing, and the enumeration that fills their
// lists from the SDK on threads of their own (one per refresh request).
#pragma once

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "ViewerBiz3Types.h"
#include "device/DeviceRegistry.h"

class CameraHost;

class CameraLinkDevices {
public:
    CameraLinkDevices(DeviceRegistry& registry, CameraHost& host);
    ~CameraLinkDevices();
    CameraLinkDevices(const CameraLinkDevices&) = delete;
    CameraLinkDevices& operator=(const CameraLinkDevices&) = delete;

    // Enumerates on a thread of its own: cards and cameras, or only cameras.
    void StartRefresh(bool cardsAndCameras);
    // Joins every refresh thread; later requests start none.
    void Stop();

    int OpenCard(const std::string& key);
    int CloseCard(const std::string& key);
    int GetCardNodeValue(const std::string& key, const std::string& node, std::string& value);
    int SetCardNodeValue(const std::string& key, const std::string& node, const std::string& value);
    // The caller holds the operation mutex.
    int OpenCamera(const std::string& key, const std::string& protocol, const std::string& serialPort);
    int CloseCamera(const std::string& key);
    void AddCamera(Camera* camera);

    // Enumerations; each notifies the device list when it found something new.
    void DiscoverCardsAndCameras();
    void DiscoverCamerasOnly();

private:
    struct RefreshThread {
        std::thread thread;
        std::atomic<bool> done{false};
    };

    int BindCamera(CLCamera* camera, const std::string& protocol, const std::string& serialPort,
                   DeviceRegistry::CLCameraMap& openedMap, std::mutex& openedMutex);
    bool DiscoverCards();
    bool DiscoverCameras();
    void JoinFinishedRefreshes();

    DeviceRegistry& m_registry;
    CameraHost& m_host;
    std::mutex m_refreshThreadsMutex;
    bool m_stopped = false;
    std::list<std::unique_ptr<RefreshThread>> m_refreshThreads;
};
