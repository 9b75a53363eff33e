#include "support/common/CameraTestHost.h"

#include <thread>

#include "camera/Camera.h"

CameraTestHost::CameraTestHost()
{
    SetCameraHost(this);
}

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

void CameraTestHost::AdoptCamera(std::unique_ptr<Camera> camera)
{
    const std::string key = camera->GetKey();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_cameras[key] = std::move(camera);
}

bool CameraTestHost::Owns(const std::string& key) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_cameras.count(key) != 0;
}

void CameraTestHost::SetImageHoldTime(std::chrono::milliseconds holdTime)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_holdTime = holdTime;
}

void CameraTestHost::SetImageObserver(std::function<void(ZYLGENICAM::IImage*)> observer)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_imageObserver = std::move(observer);
}

std::vector<CameraTestHost::ImageEvent> CameraTestHost::Images() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_images;
}

std::size_t CameraTestHost::ImagesWithPicture() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::size_t count = 0;
    for (const ImageEvent& event : m_images)
        count += event.withImage ? 1 : 0;
    return count;
}

std::vector<CameraTestHost::StatisticEvent> CameraTestHost::Statistics() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_statistics;
}

std::vector<CameraTestHost::DeviceListEvent> CameraTestHost::DeviceLists() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_deviceLists;
}

std::vector<std::string> CameraTestHost::Removed() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_removed;
}

std::vector<Camera*> CameraTestHost::AddedCLCameras() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_addedCLCameras;
}

std::vector<int> CameraTestHost::Refreshes() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_refreshes;
}

std::size_t CameraTestHost::NotifyImageUpdate(std::string key, ZYLGENICAM::IImage* image, int extra1, int extra2)
{
    std::chrono::milliseconds holdTime;
    std::function<void(ZYLGENICAM::IImage*)> observer;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_images.push_back({key, image != nullptr, extra1, extra2});
        holdTime = m_holdTime;
        observer = m_imageObserver;
    }
    if (!image)
        return 0;
    if (observer)
        observer(image);
    std::this_thread::sleep_for(holdTime);
    image->Release();
    return 1;
}

void CameraTestHost::NotifyAcqStatisticUpdate(std::string key, bool flag)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_statistics.push_back({key, flag});
}

void CameraTestHost::NotifyDeviceListUpdate(std::string listKey, std::string key)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found = m_cameras.find(key);
    m_deviceLists.push_back(
        {listKey, key, true, found == m_cameras.end() ? "" : found->second->GetInfo(ViewerBiz3::CAM_AVAILABLE)});
}

void CameraTestHost::NotifyDeviceListUpdate()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_deviceLists.push_back({"", "", false, ""});
}

void CameraTestHost::RemoveOpenedCamera(std::string key)
{
    std::unique_ptr<Camera> camera;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto found = m_cameras.find(key);
        if (found != m_cameras.end()) {
            camera = std::move(found->second);
            m_cameras.erase(found);
        }
    }
    camera.reset();
    std::lock_guard<std::mutex> lock(m_mutex);
    m_removed.push_back(key);
}

void CameraTestHost::AddCLCamera(Camera* camera)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_addedCLCameras.push_back(camera);
}

int CameraTestHost::RefreshDeviceList(int types)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_refreshes.push_back(types);
    return 0;
}
