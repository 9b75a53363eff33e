#include "support/common/DeviceEventRecorder.h"

#include <algorithm>

#include "ZylImage.h"
#include "events/EventManager.h"

std::size_t DeviceEventRecorder::Events::WholeLists() const
{
    return std::count_if(deviceLists.begin(), deviceLists.end(), [](const DeviceList& list) { return list.kind == 0; });
}

DeviceEventRecorder::DeviceList DeviceEventRecorder::Events::LastWholeList() const
{
    for (auto list = deviceLists.rbegin(); list != deviceLists.rend(); ++list)
        if (list->kind == 0)
            return *list;
    return DeviceList{0, {}, {}};
}

DeviceEventRecorder::DeviceEventRecorder()
{
    m_event.RegisterDeviceListUpdateListener(this);
    m_event.RegisterCameraIdUpdateListener(this);
    m_event.RegisterImageModeUpdateListener(this);
    m_event.RegisterSLImageShowModeUpdateListener(this);
    m_event.RegisterImageUpdateListener("", this);
}

DeviceEventRecorder::~DeviceEventRecorder()
{
    m_event.UnRegisterDeviceListUpdateListener(this);
    m_event.UnRegisterCameraIdUpdateListener(this);
    m_event.UnRegisterImageModeUpdateListener(this);
    m_event.UnRegisterSLImageShowModeUpdateListener(this);
    m_event.UnRegisterImageUpdateListener("", this);
}

template <typename Change>
void DeviceEventRecorder::Record(Change change)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    change(m_events);
}

DeviceEventRecorder::Events DeviceEventRecorder::Snapshot() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_events;
}

void DeviceEventRecorder::Clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_events = Events();
}

void DeviceEventRecorder::OnDeviceListUpdate(int kind, std::vector<std::string> first, std::vector<std::string> second)
{
    Record([&](Events& events) { events.deviceLists.push_back({kind, first, second}); });
}

void DeviceEventRecorder::OnCameraIdUpdate(std::string oldId, std::string newName)
{
    Record([&](Events& events) { events.cameraIds.push_back(oldId + "=" + newName); });
}

void DeviceEventRecorder::OnImageModeUpdate(std::string cameraKey, int imageMode)
{
    Record([&](Events& events) { events.imageModes.push_back(cameraKey + "=" + std::to_string(imageMode)); });
}

void DeviceEventRecorder::OnSLImageShowModeUpdate(std::string cameraId, int showMode)
{
    Record([&](Events& events) { events.showModes.push_back(cameraId + "=" + std::to_string(showMode)); });
}

void DeviceEventRecorder::OnImageUpdate(std::string /*cameraKey*/, void* image, int /*extra1*/, int /*extra2*/)
{
    if (image != nullptr)
        static_cast<ZYLGENICAM::IImage*>(image)->Release();
    Record([](Events& events) { ++events.images; });
}
