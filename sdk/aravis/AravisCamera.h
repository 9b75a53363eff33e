// ICamera on Aravis: one device of any of our transports (GigE Vision, USB3 Vision, simulated).
#pragma once

#include <arv.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "ZylSdk.h"
#include "genapi/GenApi.h"
#include "sdk/aravis/AcquisitionStream.h"
#include "sdk/aravis/AravisCameraInfo.h"
#include "sdk/aravis/AravisModule.h"
#include "sdk/aravis/GObjectPtr.h"
#include "sdk/aravis/StreamModule.h"

namespace ZYLGENICAM {

class AravisCamera final : public ICamera {
public:
    explicit AravisCamera(const AravisDeviceRecord& record);

    // Buffers queued per acquisition unless module 4 asks for another count.
    static constexpr unsigned kBufferPoolSize = 16;
    // A frame within this time proves the device alive without a register read. Short, so that a
    // camera that stopped sending is asked at the watchdog's next look: a loss must be handled
    // within about a second of the last frame.
    static constexpr int64_t kAliveByFramesMs = 300;

    int Open(int accessMode) override;
    int Close() override;
    bool IsOpen() override { return m_open.load(); }
    bool IsConnected() override;
    bool IsGrabbing() override { return m_grabbing.load(); }
    ICameraInfo* GetDeviceInfo() override { return m_info; }
    IModule* GetModule0() override;
    IModule* GetModule1() override { return nullptr; }
    IModule* GetModule2() override { return nullptr; }
    IModule* GetModule3() override;
    IModule* GetModule4() override;
    int StartGrabbing(int mode, uint64_t frameLimit) override;
    int StopGrabbing() override;
    int GetImage(IImage*& image, uint64_t timeoutMs) override;
    int SetCLProtocol(const char*, const char*) override { return SDK_ERROR; }
    void Destroy() override;

private:
    ~AravisCamera();

    GObjectPtr<ArvDevice> OpenDevice(int& result);
    int CloseLocked();
    void StopStreamLocked();
    bool ExecuteCommand(const char* name);
    // What a probe asks: a GigE Vision device's address, or a reference to any other device.
    struct ProbeTarget {
        std::string gigeAddress;
        GObjectPtr<ArvDevice> device;
    };
    ProbeTarget ProbeTargetLocked() const;
    static bool Answers(const ProbeTarget& target);
    bool ProbeDevice();
    void MarkLostUnlessAnsweringLocked();
    bool IsLost() const;
    void MarkAlive();

    AravisCameraInfo* m_info;
    std::mutex m_mutex; // open, close, start, stop
    GObjectPtr<ArvDevice> m_device;
    std::unique_ptr<GenApi_3_4::INodeMap> m_nodeMap;
    std::unique_ptr<AravisModule> m_featureModule;
    std::unique_ptr<GenApi_3_4::INodeMap> m_transportNodeMap; // GigE Vision only
    std::unique_ptr<AravisModule> m_transportModule;
    std::unique_ptr<StreamModule> m_streamModule;
    std::shared_ptr<AcquisitionStream> m_stream;
    // Written on Aravis's heartbeat thread; shared with the device so a late signal never touches a
    // freed camera.
    std::shared_ptr<std::atomic<bool>> m_controlLost;
    gulong m_controlLostHandler = 0;
    std::atomic<bool> m_open{false};
    std::atomic<bool> m_grabbing{false};
    std::atomic<bool> m_lost{false};
    std::atomic<int64_t> m_lastAliveMs{0};
};

} // namespace ZYLGENICAM
