#include "events/EventManager.h"

using namespace ViewerBiz3;

EventManager m_event;

int EventManager::RegisterTLTypeUpdateListener(ITLTypeUpdate* listener)
{
    return RegisterListener(listener, m_tlTypeMutex, m_tlTypeListeners);
}

int EventManager::UnRegisterTLTypeUpdateListener(ITLTypeUpdate* listener)
{
    return UnRegisterListener(listener, m_tlTypeMutex, m_tlTypeListeners);
}

void EventManager::NotifyTLTypeUpdateListener(unsigned long long tlTypeMask)
{
    NotifyListener(m_tlTypeMutex, m_tlTypeListeners, &ITLTypeUpdate::OnTLTypeUpdate, tlTypeMask);
}

int EventManager::RegisterDeviceListUpdateListener(IDeviceListUpdate* listener)
{
    return RegisterListener(listener, m_deviceListMutex, m_deviceListListeners);
}

int EventManager::UnRegisterDeviceListUpdateListener(IDeviceListUpdate* listener)
{
    return UnRegisterListener(listener, m_deviceListMutex, m_deviceListListeners);
}

void EventManager::NotifyDeviceListUpdateListener(int kind, std::vector<std::string> first,
                                                  std::vector<std::string> second)
{
    NotifyListener(m_deviceListMutex, m_deviceListListeners, &IDeviceListUpdate::OnDeviceListUpdate, kind, first,
                   second);
}

int EventManager::RegisterFocusUpdateListener(IFocusUpdate* listener)
{
    return RegisterListener(listener, m_focusMutex, m_focusListeners);
}

int EventManager::UnRegisterFocusUpdateListener(IFocusUpdate* listener)
{
    return UnRegisterListener(listener, m_focusMutex, m_focusListeners);
}

void EventManager::NotifyFocusUpdateListener(FOCUS_TYPE type, std::string deviceId)
{
    NotifyListener(m_focusMutex, m_focusListeners, &IFocusUpdate::OnFocusUpdate, type, deviceId);
}

int EventManager::RegisterLayoutUpdateListener(ILayoutUpdate* listener)
{
    return RegisterListener(listener, m_layoutMutex, m_layoutListeners);
}

int EventManager::UnRegisterLayoutUpdateListener(ILayoutUpdate* listener)
{
    return UnRegisterListener(listener, m_layoutMutex, m_layoutListeners);
}

void EventManager::NotifyLayoutUpdateListener(LAYOUT_TYPE layout)
{
    NotifyListener(m_layoutMutex, m_layoutListeners, &ILayoutUpdate::OnLayoutUpdate, layout);
}

int EventManager::RegisterImageUpdateListener(std::string /*cameraId*/, IImageUpdate* listener)
{
    return m_imageListeners.Add(listener);
}

int EventManager::UnRegisterImageUpdateListener(std::string /*cameraId*/, IImageUpdate* listener)
{
    return m_imageListeners.Remove(listener);
}

std::size_t EventManager::NotifyImageUpdateListener(std::string cameraKey, void* image, int extra1, int extra2)
{
    return m_imageListeners.Notify(&IImageUpdate::OnImageUpdate, cameraKey, image, extra1, extra2);
}

int EventManager::RegisterImageModeUpdateListener(IImageModeUpdate* listener)
{
    return RegisterListener(listener, m_imageModeMutex, m_imageModeListeners);
}

int EventManager::UnRegisterImageModeUpdateListener(IImageModeUpdate* listener)
{
    return UnRegisterListener(listener, m_imageModeMutex, m_imageModeListeners);
}

void EventManager::NotifyImageModeUpdateListener(std::string cameraKey, int imageMode)
{
    NotifyListener(m_imageModeMutex, m_imageModeListeners, &IImageModeUpdate::OnImageModeUpdate, cameraKey, imageMode);
}

int EventManager::RegisterSLImageShowModeUpdateListener(ISLImageShowModeUpdate* listener)
{
    return RegisterListener(listener, m_slImageShowModeMutex, m_slImageShowModeListeners);
}

int EventManager::UnRegisterSLImageShowModeUpdateListener(ISLImageShowModeUpdate* listener)
{
    return UnRegisterListener(listener, m_slImageShowModeMutex, m_slImageShowModeListeners);
}

void EventManager::NotifySLImageShowModeUpdateListener(std::string cameraId, int showMode)
{
    NotifyListener(m_slImageShowModeMutex, m_slImageShowModeListeners, &ISLImageShowModeUpdate::OnSLImageShowModeUpdate,
                   cameraId, showMode);
}

int EventManager::RegisterAcqStatisticUpdateListener(IAcqStatisticUpdate* listener)
{
    return m_acqStatisticListeners.Add(listener);
}

int EventManager::UnRegisterAcqStatisticUpdateListener(IAcqStatisticUpdate* listener)
{
    return m_acqStatisticListeners.Remove(listener);
}

void EventManager::NotifyAcqStatisticUpdateListener(std::string cameraName, bool fromSetInfo)
{
    m_acqStatisticListeners.Notify(&IAcqStatisticUpdate::OnAcqStatisticUpdate, cameraName, fromSetInfo);
}

int EventManager::RegisterCardTimerNodeUpdateListener(std::string /*cardId*/, std::string /*nodeName*/,
                                                      int /*interval*/, ITimerNodeUpdate* listener)
{
    return RegisterListener(listener, m_cardTimerNodeMutex, m_cardTimerNodeListeners);
}

int EventManager::UnRegisterCardTimerNodeUpdateListener(std::string /*cardId*/, std::string /*nodeName*/,
                                                        int /*interval*/, ITimerNodeUpdate* listener)
{
    return UnRegisterListener(listener, m_cardTimerNodeMutex, m_cardTimerNodeListeners);
}

void EventManager::NotifyCardTimerNodeUpdateListener(std::string deviceId, std::string nodeName, std::string nodeValue)
{
    NotifyListener(m_cardTimerNodeMutex, m_cardTimerNodeListeners, &ITimerNodeUpdate::OnTimerNodeUpdate, deviceId,
                   nodeName, nodeValue);
}

int EventManager::RegisterCameraTimerNodeUpdateListener(std::string /*cameraId*/, std::string /*nodeName*/,
                                                        int /*interval*/, ITimerNodeUpdate* listener)
{
    return RegisterListener(listener, m_cameraTimerNodeMutex, m_cameraTimerNodeListeners);
}

int EventManager::UnRegisterCameraTimerNodeUpdateListener(std::string /*cameraId*/, std::string /*nodeName*/,
                                                          int /*interval*/, ITimerNodeUpdate* listener)
{
    return UnRegisterListener(listener, m_cameraTimerNodeMutex, m_cameraTimerNodeListeners);
}

void EventManager::NotifyCameraTimerNodeUpdateListener(std::string deviceId, std::string nodeName,
                                                       std::string nodeValue)
{
    NotifyListener(m_cameraTimerNodeMutex, m_cameraTimerNodeListeners, &ITimerNodeUpdate::OnTimerNodeUpdate, deviceId,
                   nodeName, nodeValue);
}

int EventManager::RegisterImportUpdateListener(IImportUpdate* listener)
{
    return RegisterListener(listener, m_importMutex, m_importListeners);
}

int EventManager::UnRegisterImportUpdateListener(IImportUpdate* listener)
{
    return UnRegisterListener(listener, m_importMutex, m_importListeners);
}

void EventManager::NotifyImportUpdateListener(std::string text)
{
    NotifyListener(m_importMutex, m_importListeners, &IImportUpdate::OnImportUpdate, text);
}

int EventManager::RegisterLoggerUpdateListener(ILoggerUpdate* listener)
{
    return RegisterListener(listener, m_loggerMutex, m_loggerListeners);
}

int EventManager::UnRegisterLoggerUpdateListener(ILoggerUpdate* listener)
{
    return UnRegisterListener(listener, m_loggerMutex, m_loggerListeners);
}

void EventManager::NotifyLoggerUpdateListener(std::string source, std::string level, std::string message)
{
    NotifyListener(m_loggerMutex, m_loggerListeners, &ILoggerUpdate::OnLoggerUpdate, source, level, message);
}

int EventManager::RegisterROIUpdateListener(IROIDrawUpdate* listener)
{
    return RegisterListener(listener, m_roiMutex, m_roiListeners);
}

int EventManager::UnRegisterROIUpdateListener(IROIDrawUpdate* listener)
{
    return UnRegisterListener(listener, m_roiMutex, m_roiListeners);
}

void EventManager::NotifyROIUpdateListener(std::string cameraId, int x, int y, int width, int height, int operation,
                                           int& index, bool& result, int extra1, int extra2)
{
    NotifyListener(m_roiMutex, m_roiListeners, &IROIDrawUpdate::OnROIDrawUpdate, cameraId, x, y, width, height,
                   operation, index, result, extra1, extra2);
}

int EventManager::RegisterCorrectionUpdateListener(ICorrectionUpdate* listener)
{
    return RegisterListener(listener, m_correctionMutex, m_correctionListeners);
}

int EventManager::UnRegisterCorrectionUpdateListener(ICorrectionUpdate* listener)
{
    return UnRegisterListener(listener, m_correctionMutex, m_correctionListeners);
}

void EventManager::NotifyCorrectionUpdateListener(std::string cameraId, int kind, float value, void* data)
{
    NotifyListener(m_correctionMutex, m_correctionListeners, &ICorrectionUpdate::OnCorrectionUpdate, cameraId, kind,
                   value, data);
}

int EventManager::RegisterLangUpdateListener(ILangUpdate* listener)
{
    return RegisterListener(listener, m_langMutex, m_langListeners);
}

int EventManager::UnRegisterLangUpdateListener(ILangUpdate* listener)
{
    return UnRegisterListener(listener, m_langMutex, m_langListeners);
}

void EventManager::NotifyLangUpdateListener(std::string language)
{
    NotifyListener(m_langMutex, m_langListeners, &ILangUpdate::OnLangUpdate, language);
}

int EventManager::RegisterCameraIdUpdateListener(ICameraIdUpdate* listener)
{
    return RegisterListener(listener, m_cameraIdMutex, m_cameraIdListeners);
}

int EventManager::UnRegisterCameraIdUpdateListener(ICameraIdUpdate* listener)
{
    return UnRegisterListener(listener, m_cameraIdMutex, m_cameraIdListeners);
}

void EventManager::NotifyCameraIdUpdateListener(std::string oldId, std::string newName)
{
    NotifyListener(m_cameraIdMutex, m_cameraIdListeners, &ICameraIdUpdate::OnCameraIdUpdate, oldId, newName);
}

namespace {

template <typename Mutex, typename Vector>
void ClearList(Mutex& mutex, Vector& listeners)
{
    std::lock_guard<Mutex> lock(mutex);
    listeners.clear();
}

} // namespace

void EventManager::ClearAll()
{
    ClearList(m_tlTypeMutex, m_tlTypeListeners);
    ClearList(m_deviceListMutex, m_deviceListListeners);
    ClearList(m_focusMutex, m_focusListeners);
    ClearList(m_layoutMutex, m_layoutListeners);
    m_imageListeners.Clear();
    ClearList(m_imageModeMutex, m_imageModeListeners);
    ClearList(m_slImageShowModeMutex, m_slImageShowModeListeners);
    m_acqStatisticListeners.Clear();
    ClearList(m_cardTimerNodeMutex, m_cardTimerNodeListeners);
    ClearList(m_cameraTimerNodeMutex, m_cameraTimerNodeListeners);
    ClearList(m_importMutex, m_importListeners);
    ClearList(m_loggerMutex, m_loggerListeners);
    ClearList(m_roiMutex, m_roiListeners);
    ClearList(m_correctionMutex, m_correctionListeners);
    ClearList(m_langMutex, m_langListeners);
    ClearList(m_cameraIdMutex, m_cameraIdListeners);
}
