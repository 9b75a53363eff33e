#include "support/common/CameraTestHost.h"

#include <algorithm>
#include <thread>

CameraTestHost::~CameraTestHost()
{
    std::map<std::string, std::unique_ptr<Camera>> cameras;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        cameras.swap(m_cameras);
    }
    cameras.clear();
    SetCameraHost(nullptr);
}

CameraTestHost::Record CameraTestHost::Recorded() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_record;
}

std::size_t CameraTestHost::ImagesWithPicture() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::count_if(m_record.images.begin(), m_record.images.end(),
                         [](const ImageEvent& event) { return event.withImage; });
}

std::size_t CameraTestHost::NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2)
{
    Append(m_record.images, {key, image != nullptr, extra1, extra2});
    if (!image)
        return 0;
    std::this_thread::sleep_for(m_holdTime.load());
    image->Release();
    return 1;
}

void CameraTestHost::NotifyDeviceListUpdate(std::string listKey, std::string key)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found = m_cameras.find(key);
    m_record.deviceLists.push_back(
        {listKey, key, true, found == m_cameras.end() ? "" : found->second->GetInfo(ViewerBiz3::CAM_AVAILABLE)});
}

void CameraTestHost::RemoveOpenedCamera(std::string key)
{
    decltype(m_cameras)::node_type camera;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        camera = m_cameras.extract(key);
    }
    // Deleted outside the lock: a camera's shutdown may call back into the host.
    camera = {};
    Append(m_record.removed, key);
}
