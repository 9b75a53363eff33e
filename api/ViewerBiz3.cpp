// The exported functions: thin relays into the device manager, the listener
// registry and the settings object. Nothing thrown below may cross into the
// host, so every relay runs inside Guarded.
#include "ViewerBiz3.h"

#include <exception>

#include "device/DeviceManager.h"
#include "events/EventManager.h"
#include "log/Log.h"
#include "settings/ParameterManager.h"

// Set by Init and deliberately left as it is by UnInit: the presence checks
// guard against calls made before the first Init only.
DeviceManager* m_device = nullptr;

namespace {

const char* const LogSource = "ViewerBiz3";

void LogRelayFailure(const char* function, const char* reason)
{
    try {
        // Without notify: the exception may have come from a logger listener.
        Utilities::LogError(LogSource, std::string(function) + " failed: " + reason, 0);
    } catch (...) {
        // Nothing is left to report to when the log itself fails.
    }
}

// Runs one relay; an exception from below becomes the given failure result.
template <typename Result, typename Relay>
Result Guarded(const char* function, const Result& failure, Relay&& relay)
{
    try {
        return relay();
    } catch (const std::exception& error) {
        LogRelayFailure(function, error.what());
    } catch (...) {
        LogRelayFailure(function, "unknown exception");
    }
    return failure;
}

// One step of Init or UnInit; true when it completed.
template <typename Step>
bool RunStep(const char* function, Step&& step)
{
    return Guarded(function, false, [&] {
        step();
        return true;
    });
}

// A relay into the device manager. Before the first Init there is none and the
// failure result is returned; this also covers the relays that the interface
// documents as requiring Init, which would otherwise dereference null.
template <typename Result, typename Relay>
Result WithDevice(const char* function, const Result& failure, Relay&& relay)
{
    return Guarded(function, failure, [&]() -> Result {
        if (m_device == nullptr) {
            return failure;
        }
        return relay(*m_device);
    });
}

template <typename Relay>
int WithEvents(const char* function, Relay&& relay)
{
    return Guarded(function, -1, [&] { return relay(m_event); });
}

// The ROI notification of a move or removal: what listeners write back into
// the index and the flag is not the caller's business and is dropped.
int NotifyROIChange(const char* function, const std::string& id, int x, int y, int width, int height, int operation,
                    int index)
{
    return WithEvents(function, [&](EventManager& events) {
        int indexCopy = index;
        bool scratch = false;
        events.NotifyROIUpdateListener(id, x, y, width, height, operation, indexCopy, scratch, 0, 0);
        return 0;
    });
}

} // namespace

namespace ViewerBiz3 {

int Init()
{
    if (!RunStep(__func__, [] { m_device = DeviceManager::Start(); })) {
        m_device = nullptr;
    }
    RunStep(__func__, [] { m_parameterManager.loadIniFile(); });
    // -1 on success is the interface's own convention.
    return m_device != nullptr ? -1 : 0;
}

int UnInit()
{
    RunStep(__func__, [] { m_event.ClearAll(); });
    RunStep(__func__, [] { DeviceManager::Shutdown(); });
    RunStep(__func__, [] { m_parameterManager.saveIniFile(); });
    return 0;
}

int SetParamterInfo(PARAMETER_INFO key, std::string value)
{
    return Guarded(__func__, -1, [&] { return m_parameterManager.SetParamterInfo(key, value); });
}

std::string GetParamterInfo(PARAMETER_INFO key)
{
    return Guarded(__func__, std::string(), [&] { return m_parameterManager.GetParamterInfo(key); });
}

int SetImgLayout(LAYOUT_TYPE layout)
{
    return Guarded(__func__, -1, [&] {
        m_parameterManager.SetLayoutType(layout);
        return 0;
    });
}

LAYOUT_TYPE GetImgLayout()
{
    return Guarded(__func__, LAYOUT_DEFAULT, [] { return m_parameterManager.GetLayoutType(); });
}

int SetLang(std::string language)
{
    return Guarded(__func__, -1, [&] {
        m_parameterManager.SetLanguage(language);
        return 0;
    });
}

std::string GetLang()
{
    return Guarded(__func__, std::string(), [] { return m_parameterManager.GetLanguage(); });
}

int RefreshCameraList(int types)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.RefreshDeviceList(types); });
}

unsigned long long GetTLTypeList()
{
    return WithDevice(__func__, ~0ULL, [](DeviceManager& device) { return device.GetTLTypeList(); });
}

int SetTLTypeList(unsigned long long mask)
{
    return WithDevice(__func__, 0, [&](DeviceManager& device) {
        device.SetTLTypeList(mask);
        return 0;
    });
}

int ModifyCameraIp(std::string id, const std::string& ip, const std::string& mask, const std::string& gateway,
                   bool persistent)
{
    return WithDevice(__func__, -1,
                      [&](DeviceManager& device) { return device.ModifyCameraIP(id, ip, mask, gateway, persistent); });
}

int OpenCamera(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.OpenCamera(id); });
}

int CloseCamera(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.CloseCamera(id); });
}

int StartGrab(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.StartGrab(id); });
}

int StopGrab(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.StopGrab(id); });
}

std::vector<std::string> GetOpenedCameraIds()
{
    return WithDevice(__func__, std::vector<std::string>(),
                      [](DeviceManager& device) { return device.GetOpenedCameraIds(); });
}

std::string GetCameraInfo(std::string id, CAM_INFO field)
{
    return WithDevice(__func__, std::string(), [&](DeviceManager& device) { return device.GetCameraInfo(id, field); });
}

int SetCameraInfo(std::string id, CAM_INFO field, const std::string& value)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.SetCameraInfo(id, field, value); });
}

int SetFocus(FOCUS_TYPE type, std::string id)
{
    return WithDevice(__func__, 0, [&](DeviceManager& device) {
        // The device manager refuses 4 and above itself; a negative type is
        // refused here. Either way the interface answers 0.
        if (type >= FOCUS_NONE) {
            device.SetFocus(type, id);
        }
        return 0;
    });
}

int ModifyCameraId(std::string oldId, std::string newId)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.ModifyCameraId(oldId, newId); });
}

int SetCameraImageMode(std::string id, int mode, bool notify)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.SetCameraImageMode(id, mode, notify); });
}

int GetCameraImageMode(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.GetCameraImageMode(id); });
}

int SetSLImageShowMode(std::string id, int mode)
{
    return WithEvents(__func__, [&](EventManager& events) {
        events.NotifySLImageShowModeUpdateListener(id, mode);
        return 0;
    });
}

int GetSLImageShowMode(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.GetSLCameraShowMode(id); });
}

int FirmwareUpgrade(std::string id, std::string file, int* progress, bool* done)
{
    if (progress == nullptr || done == nullptr) {
        LogRelayFailure(__func__, "progress and done must not be null");
        return -1;
    }
    return WithDevice(__func__, -1,
                      [&](DeviceManager& device) { return device.FirmwareUpgrade(id, file, progress, done); });
}

int GetCLProtocolsAndSerials(std::list<std::string>& protocols, std::list<std::string>& serials)
{
    return WithDevice(__func__, -1,
                      [&](DeviceManager& device) { return device.GetCLProtocolsAndSerials(protocols, serials); });
}

int OpenCard(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.OpenCard(id); });
}

int CloseCard(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.CloseCard(id); });
}

int OpenCLCamera(std::string id, std::string protocol, std::string serialPort)
{
    return WithDevice(__func__, -1,
                      [&](DeviceManager& device) { return device.OpenCLCamera(id, protocol, serialPort); });
}

int CloseCLCamera(std::string id)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.CloseCLCamera(id); });
}

std::vector<std::string> GetOpenedCardIds()
{
    return WithDevice(__func__, std::vector<std::string>(),
                      [](DeviceManager& device) { return device.GetOpenedCardIds(); });
}

std::string GetCardInfo(std::string id, CARD_INFO field)
{
    return WithDevice(__func__, std::string(), [&](DeviceManager& device) { return device.GetCardInfo(id, field); });
}

int GetCardNodeValue(std::string id, std::string node, std::string& value)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.GetCardNodeValue(id, node, value); });
}

int SetCardNodeValue(std::string id, std::string node, std::string value)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.SetCardNodeValue(id, node, value); });
}

int GetCameraNodeValue(std::string id, std::string node, std::string& value)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.GetCameraNodeValue(id, node, value); });
}

int SetCameraNodeValue(std::string id, std::string node, std::string value)
{
    return WithDevice(__func__, -1, [&](DeviceManager& device) { return device.SetCameraNodeValue(id, node, value); });
}

const char* GetAttrLayoutXML(FOCUS_TYPE type, std::string id)
{
    return WithDevice(__func__, static_cast<const char*>(nullptr),
                      [&](DeviceManager& device) { return device.GetXML(type, id); });
}

void* GetAttrNodeMap(FOCUS_TYPE type, std::string id, NodeMapType which)
{
    return WithDevice(__func__, static_cast<void*>(nullptr),
                      [&](DeviceManager& device) { return static_cast<void*>(device.GetNodeMap(type, id, which)); });
}

void NotifyImportUpdate(std::string text)
{
    WithEvents(__func__, [&](EventManager& events) {
        events.NotifyImportUpdateListener(text);
        return 0;
    });
}

int NotifyCorrection(std::string id, int kind, float value, void* data)
{
    return WithEvents(__func__, [&](EventManager& events) {
        events.NotifyCorrectionUpdateListener(id, kind, value, data);
        return 0;
    });
}

int DrawROI(std::string id, int x, int y, int width, int height, int& index, bool& result, int extra1, int extra2)
{
    return WithEvents(__func__, [&](EventManager& events) {
        events.NotifyROIUpdateListener(id, x, y, width, height, 0, index, result, extra1, extra2);
        return 0;
    });
}

int SetROIPos(std::string id, int index, int x, int y, int width, int height)
{
    return NotifyROIChange(__func__, id, x, y, width, height, 1, index);
}

int RomoveROI(std::string id, int index)
{
    return NotifyROIChange(__func__, id, 0, 0, 0, 0, 2, index);
}

int RegisterTLTypeUpdateListener(ITLTypeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterTLTypeUpdateListener(listener); });
}

int UnRegisterTLTypeUpdateListerner(ITLTypeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterTLTypeUpdateListener(listener); });
}

int RegisterDeviceListUpdateListener(IDeviceListUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.RegisterDeviceListUpdateListener(listener); });
}

int UnRegisterDeviceListUpdateListener(IDeviceListUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterDeviceListUpdateListener(listener); });
}

int RegisterFocusUpdateListener(IFocusUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterFocusUpdateListener(listener); });
}

int UnRegisterFocusUpdateListener(IFocusUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterFocusUpdateListener(listener); });
}

int RegisterLayoutUpdateListener(ILayoutUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterLayoutUpdateListener(listener); });
}

int UnRegisterLayoutUpdateListener(ILayoutUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterLayoutUpdateListener(listener); });
}

int RegisterImageUpdateListener(std::string id, IImageUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterImageUpdateListener(id, listener); });
}

int UnRegisterImageUpdateListener(std::string id, IImageUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterImageUpdateListener(id, listener); });
}

int RegisterImageModeUpdateListener(IImageModeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterImageModeUpdateListener(listener); });
}

int UnRegisterImageModeUpdateListener(IImageModeUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterImageModeUpdateListener(listener); });
}

int RegisterSLImageShowModeUpdateListener(ISLImageShowModeUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.RegisterSLImageShowModeUpdateListener(listener); });
}

int UnRegisterSLImageShowModeUpdateListener(ISLImageShowModeUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterSLImageShowModeUpdateListener(listener); });
}

int RegisterAcqStatisticUpdateListener(IAcqStatisticUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.RegisterAcqStatisticUpdateListener(listener); });
}

int UnRegisterAcqStatisticUpdateListener(IAcqStatisticUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterAcqStatisticUpdateListener(listener); });
}

int RegisterCardTimerNodeUpdateListener(std::string id, std::string node, int interval, ITimerNodeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) {
        return events.RegisterCardTimerNodeUpdateListener(id, node, interval, listener);
    });
}

int UnRegisterCardTimerNodeUpdateListener(std::string id, std::string node, int interval, ITimerNodeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) {
        return events.UnRegisterCardTimerNodeUpdateListener(id, node, interval, listener);
    });
}

int RegisterCameraTimerNodeUpdateListener(std::string id, std::string node, int interval, ITimerNodeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) {
        return events.RegisterCameraTimerNodeUpdateListener(id, node, interval, listener);
    });
}

int UnRegisterCameraTimerNodeUpdateListener(std::string id, std::string node, int interval, ITimerNodeUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) {
        return events.UnRegisterCameraTimerNodeUpdateListener(id, node, interval, listener);
    });
}

int RegisterImportUpdateListener(IImportUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterImportUpdateListener(listener); });
}

int UnRegisterImportUpdateListener(IImportUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterImportUpdateListener(listener); });
}

int RegisterLoggerUpdateListener(ILoggerUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterLoggerUpdateListener(listener); });
}

int UnRegisterLoggerUpdateListener(ILoggerUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterLoggerUpdateListener(listener); });
}

int RegisterROIUpdateListener(IROIDrawUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterROIUpdateListener(listener); });
}

int UnRegisterROIUpdateListener(IROIDrawUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterROIUpdateListener(listener); });
}

int RegisterCorrectionUpdateListener(ICorrectionUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.RegisterCorrectionUpdateListener(listener); });
}

int UnRegisterCorrectionUpdateListener(ICorrectionUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterCorrectionUpdateListener(listener); });
}

int RegisterLangUpdateListener(ILangUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterLangUpdateListener(listener); });
}

int UnRegisterLangUpdateListener(ILangUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.UnRegisterLangUpdateListener(listener); });
}

int RegisterCameraIdUpdateListener(ICameraIdUpdate* listener)
{
    return WithEvents(__func__, [&](EventManager& events) { return events.RegisterCameraIdUpdateListener(listener); });
}

int UnRegisterCameraIdUpdateListener(ICameraIdUpdate* listener)
{
    return WithEvents(__func__,
                      [&](EventManager& events) { return events.UnRegisterCameraIdUpdateListener(listener); });
}

int VLogDebug(const std::string& source, const std::string& message, int notify)
{
    return Guarded(__func__, -1, [&] {
        Utilities::LogDebug(source, message, notify);
        return 0;
    });
}

int VLogInfo(const std::string& source, const std::string& message, int notify)
{
    return Guarded(__func__, -1, [&] {
        Utilities::LogInfo(source, message, notify);
        return 0;
    });
}

int VLogWarning(const std::string& source, const std::string& message, int notify)
{
    return Guarded(__func__, -1, [&] {
        Utilities::LogWarning(source, message, notify);
        return 0;
    });
}

int VLogError(const std::string& source, const std::string& message, int notify)
{
    return Guarded(__func__, -1, [&] {
        Utilities::LogError(source, message, notify);
        return 0;
    });
}

int VLogDeadly(const std::string& source, const std::string& message, int notify)
{
    return Guarded(__func__, -1, [&] {
        Utilities::LogDeadly(source, message, notify);
        return 0;
    });
}

int SetImgZoom(std::string /*id*/, double /*zoom*/)
{
    return 0;
}

int SetDefaultLoadMode(int /*mode*/)
{
    return -1;
}

int GetDefaultLoadMode()
{
    return -1;
}

} // namespace ViewerBiz3
