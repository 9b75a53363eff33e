// One opened (or discovered) camera: its SDK handle, node access, opening and closing, and the
// steps its kind adds to the parts it is made of: the CAM_INFO texts (CameraInfoTable), the
// statistics (AcquisitionStatistics), the grab and delivery threads (AcquisitionThreads) and the
// online watchdog (Watchdog).
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>

#include "ViewerBiz3Types.h"
#include "ZylImage.h"
#include "ZylSdk.h"
#include "camera/AcquisitionStatistics.h"
#include "camera/AcquisitionThreads.h"
#include "camera/CameraInfoTable.h"
#include "camera/CameraKind.h"
#include "camera/Watchdog.h"

class FrameGrabberCard;
class SharedFramePool;

namespace GenApi_3_4 {
struct INodeMap;
}

// Serialises the handling of lost cameras (all cameras) with the discovery pass's notification.
extern std::mutex onlineMutex;

class Camera {
public:
    explicit Camera(ZYLGENICAM::ICamera* camera);

    // The eight operations subclasses replace, in this order.
    virtual int OpenCamera(int accessMode);
    virtual bool IsOnline();
    virtual int GetNodeValue(std::string nodeName, std::string& value, bool toCamera);
    virtual int SetNodeValue(std::string nodeName, std::string value, bool toCamera);
    virtual int FirmwareUpgrade(const std::string& filePath, int* progress, bool* done);
    virtual void OnlineFunction();
    virtual void GrabImageFunction();
    virtual void DeliverImageFunction();

    // The device manager deletes cameras through base pointers.
    virtual ~Camera();

    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    int CloseCamera(bool notify);
    int StartGrab(int mode, unsigned long long frameLimit);
    int StopGrab(bool notify);
    int GrabImage(ZYLGENICAM::IImage*& image, unsigned long long timeoutMs);

    std::string GetInfo(ViewerBiz3::CAM_INFO info);
    int SetInfo(ViewerBiz3::CAM_INFO info, const std::string& value);
    int GetIntNodeInfo(std::string nodeName, std::string& value, std::string& min, std::string& max, std::string& inc,
                       bool featureNodeMap);
    ZYLGENICAM::IModule* GetXML(ViewerBiz3::FOCUS_TYPE type);
    GenApi_3_4::INodeMap* GetNodeMap(ViewerBiz3::NodeMapType type);
    void SetCamera(ZYLGENICAM::ICamera* camera);
    int ModifyCameraIP(const std::string& ip, const std::string& mask, const std::string& gateway, bool persistent);

    // Accessors for discovery and the device manager; none of them notifies anyone.
    std::string GetName() const { return m_texts.Get(ViewerBiz3::CAM_NAME); }
    void SetName(const std::string& name) { m_texts.Put(ViewerBiz3::CAM_NAME, name); }
    std::string GetKey() const { return m_texts.Get(CameraInfoTable::KEY); }
    void SetKey(const std::string& key) { m_texts.Put(CameraInfoTable::KEY, key); }
    std::string GetListKey() const { return m_texts.Get(ViewerBiz3::CAM_LIST_KEY); }
    void SetListKey(const std::string& listKey) { m_texts.Put(ViewerBiz3::CAM_LIST_KEY, listKey); }
    uint16_t GetKind() const { return m_kind.load(); }
    void SetKind(uint16_t kind) { m_kind.store(kind); }
    void SetKind(CameraKind kind) { m_kind.store(static_cast<uint16_t>(kind)); }
    bool IsKind(CameraKind kind) const { return m_kind.load() == static_cast<uint16_t>(kind); }
    bool IsAvailable() const { return m_available.load(); }
    void SetAvailable(bool available) { m_available.store(available); }
    // The watchdog's last verdict (IsOnline asks the device itself).
    bool IsMarkedOnline() const { return m_online.load(); }
    void SetOnline(bool online) { m_online.store(online); }
    bool IsOpened() const { return m_opened.load(); }
    void SetOpened(bool opened) { m_opened.store(opened); }
    bool IsFlag3() const { return m_flag3.load(); }
    void SetFlag3(bool flag3) { m_flag3.store(flag3); }
    bool IsGrabbing() const { return m_grabbing.load(); }
    void SetGrabbing(bool grabbing) { m_grabbing.store(grabbing); }
    bool IsSameSegment() const { return m_sameSegment.load(); }
    void SetSameSegment(bool sameSegment) { m_sameSegment.store(sameSegment); }
    // Any text field that GetInfo reads (31-38, 40-43, 50-61, 65-68); -1 for other values.
    int SetText(ViewerBiz3::CAM_INFO info, const std::string& text);
    std::string GetHostInterfaceAddress() const { return m_texts.Get(CameraInfoTable::HOST_INTERFACE_ADDRESS); }
    void SetHostInterfaceAddress(const std::string& address)
    {
        m_texts.Put(CameraInfoTable::HOST_INTERFACE_ADDRESS, address);
    }
    std::string GetVirtualSuffix() const { return m_texts.Get(CameraInfoTable::VIRTUAL_SUFFIX); }
    void SetVirtualSuffix(const std::string& suffix) { m_texts.Put(CameraInfoTable::VIRTUAL_SUFFIX, suffix); }
    FrameGrabberCard* GetCard() const { return m_card.load(); }
    void SetCard(FrameGrabberCard* card) { m_card.store(card); }
    ZYLGENICAM::ICamera* GetSdkCamera() const { return m_camera.load(); }

protected:
    static uint64_t NowMs();
    // Bytes of one frame from its width, height and pixel format.
    static uint64_t PayloadFromPixelFormat(ZYLGENICAM::IImage* image);

    // Stops the threads and closes the device. Every subclass destructor calls it first, so
    // no thread still runs a subclass's loop while that subclass is being torn down.
    void ShutDownForDestruction();

    // Watchdog handling shared with the Camera Link camera.
    void StartWatchdogIfAbsent();
    void StopWatchdog();
    bool IsWatchdogRunning() const;
    GenApi_3_4::INodeMap* GetFeatureNodeMap() const;
    void SetFeatureNodeMap(GenApi_3_4::INodeMap* nodeMap);
    GenApi_3_4::INodeMap* GetAuxiliaryNodeMap() const;
    void SetAuxiliaryNodeMap(GenApi_3_4::INodeMap* nodeMap);

    // How a grab loop sizes frames and whether it watches frame-id continuity.
    struct GrabLoopStyle {
        bool checkFrameIds;
        uint64_t (*bytesPerFrame)(ZYLGENICAM::IImage* image);
    };
    void RunGrabLoop(const GrabLoopStyle& style);

    // How the delivery thread takes queued frames and what it passes the host with them.
    virtual DeliveryStyle CurrentDeliveryStyle();
    // Hands a frame (or null: the acquisition stopped) to the host's image listeners.
    virtual void DeliverFrame(ZYLGENICAM::IImage* image, const DeliveryStyle& style);
    void PublishStatistics(uint64_t frameCount, uint64_t errorCount, double frameRate, double bandwidth);
    // Frame and error counters only; the rates keep their values.
    void PublishCounters(uint64_t frameCount, uint64_t errorCount);
    // The grab thread reached the frame limit: it stops taking frames, lets the delivery thread
    // deliver the queued ones when asked to, and stops the acquisition.
    void StopAtFrameLimit(bool deliverQueuedFirst);
    void LogGrabFailure(int code, uint64_t frameId);

    AcquisitionStatistics m_statistics;
    AcquisitionThreads m_acquisition{m_statistics};
    const std::shared_ptr<SharedFramePool> m_framePool;

private:
    void ParametersReset();
    int NodeAccessRefusal() const;
    void LogNodeFailure(const std::string& prefix, const std::string& nodeName, const std::string& message);
    ZYLGENICAM::IModule* ModuleOf(int index) const;
    void NotifyAcqStatistics();
    // The SDK frame goes back to the SDK after the last listener released it, at once when there is none.
    void DeliverImage(ZYLGENICAM::IImage* image, int extra1, int extra2);
    // Closing: signal every thread, then wait until none touches this camera.
    void ShutDownThreads();
    void HandleLoss();
    void ReleaseLostDevice();
    void BecomeVirtualPlaceholder();
    bool LockStateUnlessExiting(std::unique_lock<std::mutex>& lock, const std::atomic<bool>& exitFlag);
    int StopGrabLocked(bool notify);
    // The acquisition stops itself: called by the grab thread after it cleared its active flag.
    void StopGrabFromGrabThread();

    CameraInfoTable m_texts;
    std::atomic<FrameGrabberCard*> m_card{nullptr};
    std::atomic<bool> m_available{false};
    std::atomic<bool> m_online{false};
    std::atomic<bool> m_opened{false};
    std::atomic<bool> m_flag3{false};
    std::atomic<uint16_t> m_kind{0};
    std::atomic<bool> m_grabbing{false};
    std::atomic<bool> m_sameSegment{false};
    std::atomic<bool> m_lostDeviceReleased{false};
    std::atomic<uint64_t> m_frameLimit{0};

    Watchdog m_watchdog;
    // Start, stop, open and close; the threads never wait for it while closing holds it.
    std::mutex m_stateMutex;
    // Node access shares it; closing takes it alone while the node maps go away.
    mutable std::shared_mutex m_nodeAccessMutex;
    std::atomic<ZYLGENICAM::ICamera*> m_camera;
    std::atomic<GenApi_3_4::INodeMap*> m_auxiliaryNodeMap{nullptr};
    std::atomic<GenApi_3_4::INodeMap*> m_featureNodeMap{nullptr};
};
