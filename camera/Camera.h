// One opened (or discovered) camera: its SDK handle, the fields the host reads by CAM_INFO,
// node access, the online watchdog and the grab and delivery threads.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>

#include "ViewerBiz3Types.h"
#include "ZylImage.h"
#include "ZylSdk.h"
#include "camera/ImageQueue.h"

class SharedFramePool;

namespace GenApi_3_4 {
struct INodeMap;
}

class Card;

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
    // The caller holds the image-list mutex.
    void ClearImageList();

    std::string GetInfo(ViewerBiz3::CAM_INFO info);
    int SetInfo(ViewerBiz3::CAM_INFO info, const std::string& value);
    int GetIntNodeInfo(std::string nodeName, std::string& value, std::string& min, std::string& max,
                       std::string& inc, bool featureNodeMap);
    ZYLGENICAM::IModule* GetXML(ViewerBiz3::FOCUS_TYPE type);
    GenApi_3_4::INodeMap* GetNodeMap(ViewerBiz3::NodeMapType type);
    void SetCamera(ZYLGENICAM::ICamera* camera);
    int ModifyCameraIP(const std::string& ip, const std::string& mask, const std::string& gateway, bool persistent);

    // Accessors for discovery and the device manager; none of them notifies anyone.
    std::string GetName() const;
    void SetName(const std::string& name);
    std::string GetKey() const;
    void SetKey(const std::string& key);
    std::string GetListKey() const;
    void SetListKey(const std::string& listKey);
    uint16_t GetKind() const;
    void SetKind(uint16_t kind);
    bool IsAvailable() const;
    void SetAvailable(bool available);
    // The watchdog's last verdict (IsOnline asks the device itself).
    bool IsMarkedOnline() const;
    void SetOnline(bool online);
    bool IsOpened() const;
    void SetOpened(bool opened);
    bool IsFlag3() const;
    void SetFlag3(bool flag3);
    bool IsGrabbing() const;
    void SetGrabbing(bool grabbing);
    bool IsSameSegment() const;
    void SetSameSegment(bool sameSegment);
    // Any text field that GetInfo reads (31-38, 40-43, 50-61, 65-68); -1 for other values.
    int SetText(ViewerBiz3::CAM_INFO info, const std::string& text);
    std::string GetHostInterfaceAddress() const;
    void SetHostInterfaceAddress(const std::string& address);
    std::string GetVirtualSuffix() const;
    void SetVirtualSuffix(const std::string& suffix);
    Card* GetCard() const;
    void SetCard(Card* card);
    ZYLGENICAM::ICamera* GetSdkCamera() const;

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

    // Pieces of the grab and delivery loops shared with the subclasses.
    // Parks the grab thread until the next start; false when the thread must end.
    bool WaitForGrabStart();
    // The same for the delivery thread.
    bool WaitForDeliveryStart();
    bool GrabShouldPause() const;
    bool DeliveryShouldPause() const;
    bool GrabShouldExit() const;
    bool IsGrabPauseSet() const;
    void MarkGrabInactive();
    // After a failed read. A device that is gone fails every read at once: the grab thread then
    // waits for the watchdog (or the host) to stop the grab rather than count failure upon failure.
    void PauseAfterFailedRead(int code);
    // Appends a frame, releasing the oldest one first when two are already waiting, and wakes
    // the delivery thread.
    void QueueImageKeepingNewest(ZYLGENICAM::IImage* image);
    // Appends a frame, dropping none, and wakes the delivery thread.
    void QueueImage(ZYLGENICAM::IImage* image);
    // Parks the delivery thread, which holds the image-list lock, until a frame is queued; false
    // when delivery must pause instead. Nothing is polled: the frame wakes it.
    bool WaitForQueuedImage(std::unique_lock<std::mutex>& lock);
    void PublishStatistics(uint64_t frameCount, uint64_t errorCount, double frameRate, double bandwidth);
    // Frame and error counters only; the rates keep their values.
    void PublishCounters(uint64_t frameCount, uint64_t errorCount);
    void NotifyAcqStatistics();
    // The acquisition stops itself: called by the grab thread after it cleared its active flag.
    void StopGrabFromGrabThread();
    // Hands a frame (or null: no image) to the host's image listeners; the frame goes back to the
    // SDK after the last of them released it, at once when there is none.
    void DeliverImage(ZYLGENICAM::IImage* image, int extra1, int extra2);
    // The null image that tells the host the acquisition stopped, then the waiting frames dropped.
    void EndDelivery(int extra1);
    uint64_t PublishedFrameCount() const;
    float GetFrameRate() const;
    void SetWorkingDisplayRate(float rate);
    void LogGrabFailure(int code, uint64_t frameId);

    std::mutex m_imageListMutex;
    ImageQueue m_imageList;
    const std::shared_ptr<SharedFramePool> m_framePool;

private:
    void ParametersReset();
    int NodeAccessRefusal() const;
    void LogNodeFailure(const std::string& prefix, const std::string& nodeName, const std::string& message);
    ZYLGENICAM::IModule* ModuleOf(int index) const;
    std::string* TextField(ViewerBiz3::CAM_INFO info);
    static bool IsHostSettable(ViewerBiz3::CAM_INFO info);
    void WakeGrabThread();
    void WakeDeliveryThread();
    void WakeWatchdog();
    template <typename Body>
    void StartAcquisitionThread(std::unique_ptr<std::thread>& thread, std::atomic<bool>& exitFlag,
                                std::atomic<bool>& pauseFlag, std::atomic<bool>& exitedFlag, Body body);
    // Closing: signal every thread, drop the thread objects, wait until none touches this camera.
    void ShutDownThreads();
    void HandleLoss();
    void ReleaseLostDevice();
    void BecomeVirtualPlaceholder();
    void SleepUnlessWatchdogStopped();
    bool LockStateUnlessExiting(std::unique_lock<std::mutex>& lock, const std::atomic<bool>& exitFlag);
    int StopGrabLocked(bool notify);
    // Releases the frames still queued for delivery; a frame queued after the delivery thread
    // ended its run, or while it never got to run, is dropped here.
    void ReleaseQueuedImages();
    static void WaitUntil(const std::function<bool()>& condition);

    // Identity and texts; all strings are guarded by m_textMutex.
    mutable std::mutex m_textMutex;
    std::string m_name;
    std::string m_key;
    std::string m_listKey;
    std::atomic<Card*> m_card{nullptr};
    std::atomic<bool> m_available{false};
    std::atomic<bool> m_online{false};
    std::atomic<bool> m_opened{false};
    std::atomic<bool> m_flag3{false};
    std::atomic<uint16_t> m_kind{0};
    std::atomic<bool> m_grabbing{false};
    std::atomic<uint64_t> m_frameCount{0};
    std::atomic<float> m_frameRate{0};
    std::atomic<float> m_bandwidth{0};
    std::atomic<uint64_t> m_statistic14{0};
    std::atomic<uint32_t> m_statistic15{0};
    std::atomic<uint32_t> m_statistic16{0};
    std::atomic<uint64_t> m_errorCount{0};
    std::atomic<uint32_t> m_statistic18{0};
    std::atomic<uint64_t> m_statistic19{0};
    std::atomic<uint64_t> m_statistic20{0};
    std::atomic<uint64_t> m_statistic21{0};
    std::atomic<float> m_displayRate{0};
    std::atomic<float> m_workingDisplayRate{0};
    std::string m_text41;
    std::string m_text40;
    std::string m_text42;
    std::string m_text43;
    std::atomic<uint8_t> m_sameSegment{0};
    std::string m_macAddress;
    std::string m_ipAddress;
    std::string m_subnetMask;
    std::string m_gateway;
    std::string m_modelName;
    std::string m_deviceText;
    std::string m_deviceText2;
    std::string m_serialNumber;
    std::string m_hostInterfaceAddress;
    std::string m_spareText;
    std::string m_imageBits{"16"};
    std::string m_samplingRatio{"4"};
    std::string m_contourSpacer{"0.002"};
    std::string m_realColor{"0"};
    std::string m_text54{"0"};
    std::string m_zUpSize;
    std::string m_zDownSize;
    std::string m_acquisitionLimit;
    std::string m_offsetY;
    std::string m_text59;
    std::string m_text60;
    std::string m_unreadText;
    std::string m_text65;
    std::string m_text66;
    std::string m_text61;
    std::string m_virtualSuffix;
    std::string m_text67{"0"};
    std::string m_text68{"3199"};

    // Thread control; sequentially consistent throughout.
    std::atomic<bool> m_watchdogStop{false};
    std::atomic<bool> m_grabExit{false};
    std::atomic<bool> m_grabPause{false};
    std::atomic<bool> m_deliverExit{false};
    std::atomic<bool> m_deliverPause{false};
    std::atomic<bool> m_grabActive{false};
    std::atomic<bool> m_watchdogRunning{false};
    std::atomic<bool> m_deliverActive{false};
    std::atomic<bool> m_nodeAccessRefused{false};
    std::atomic<bool> m_lostDeviceReleased{false};
    // Set by the grab and delivery threads as their very last access to this object, so
    // closing never returns while one of them could still touch it.
    std::atomic<bool> m_grabExited{true};
    std::atomic<bool> m_deliverExited{true};

    std::mutex m_grabWaitMutex;
    std::condition_variable m_grabCondition;
    std::condition_variable m_deliveryCondition;
    // Lets closing cut the watchdog's one-second pause short.
    std::mutex m_watchdogWaitMutex;
    std::condition_variable m_watchdogCondition;

    std::atomic<uint64_t> m_frameLimit{0};
    std::mutex m_stateMutex;
    // Node access shares it; closing takes it alone while the node maps go away.
    mutable std::shared_mutex m_nodeAccessMutex;
    std::atomic<ZYLGENICAM::ICamera*> m_camera;
    std::atomic<GenApi_3_4::INodeMap*> m_auxiliaryNodeMap{nullptr};
    std::atomic<GenApi_3_4::INodeMap*> m_featureNodeMap{nullptr};
    // Created on demand and detached; only open, close and start touch them (state mutex).
    std::unique_ptr<std::thread> m_watchdogThread;
    std::unique_ptr<std::thread> m_grabThread;
    std::unique_ptr<std::thread> m_deliveryThread;
};
