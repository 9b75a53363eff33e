// The live device list: a timer thread asks for a pass every 30 seconds, a
// discovery thread runs the passes (asked for by the timer, by hosts and by
// cameras that changed their address). A pass rebuilds the adapter table and
// the device list from the SDK's records, recognises devices that are already
// open and renames those whose identifier changed.
#pragma once

#include <atomic>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ZylSdk.h"
#include "device/DeviceRegistry.h"

class CameraHost;

class DeviceDiscovery {
public:
    // The transport bits a Camera Link refresh answers (CameraLinkDevices), never a pass.
    static constexpr int CameraLinkBits = ZYLGENICAM::TL_CAMERALINK | 0x8000;

    DeviceDiscovery(DeviceRegistry& registry, CameraHost& host);
    ~DeviceDiscovery();
    DeviceDiscovery(const DeviceDiscovery&) = delete;
    DeviceDiscovery& operator=(const DeviceDiscovery&) = delete;

    void StartTimer();
    // Ends and joins both threads; a pass under way is finished first.
    void Stop();
    // Wakes the discovery thread, starting it on the first request.
    void RequestPass();
    // After a close the list is rebuilt twice at once; the next timed refresh comes a full period later.
    void RequestRepeatPass();
    void SetTLTypeMask(unsigned long long mask) { m_tlTypeMask.store(mask); }
    unsigned long long GetTLTypeMask() const { return m_tlTypeMask.load(); }
    // Whether the record is a device already open; renames it when its identifier changed.
    // The caller holds the operation and opened-cameras mutexes.
    bool CameraIsOpened(ZYLGENICAM::ICameraInfo* info);

private:
    void RunTimer();
    void RunPasses();
    // One pass over the device list; the caller holds the four pass locks.
    void RebuildDeviceList(const std::list<ZYLGENICAM::ICameraInfo*>& records);
    void DropUnopenedCameras();
    void RebuildAdapterList();
    void AttachOpenedCameras();
    std::unique_ptr<Camera> CreateListedCamera(ZYLGENICAM::ICameraInfo* info, const std::string& identifier);
    void AttachToAdapter(Camera* camera, ZYLGENICAM::ICameraInfo* info, int tlType);
    void DropUnusedAdapters();
    void SendPendingIdUpdates();

    DeviceRegistry& m_registry;
    CameraHost& m_host;
    std::thread m_timerThread;
    std::thread m_discoveryThread;
    // Guards the discovery thread's start and its wake-ups (m_idle, m_stop seen by its wait).
    std::mutex m_refreshMutex;
    std::condition_variable m_refreshCondition;
    // Cuts the timer's one-second tick short at shutdown.
    std::mutex m_timerMutex;
    std::condition_variable m_timerWake;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_idle{true};
    // The timer thread, the discovery thread and host threads all touch these.
    std::atomic<int> m_timerTicks{0};
    std::atomic<bool> m_repeatPass{false};
    std::atomic<unsigned long long> m_tlTypeMask{15};
    // Renames found by a pass (old key, new identifier), sent once its locks
    // are released so a listener may call back in; guarded by the operation mutex.
    std::vector<std::pair<std::string, std::string>> m_pendingIdUpdates;
};
