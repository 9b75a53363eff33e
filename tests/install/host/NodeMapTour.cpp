#include "NodeMapTour.h"

#include <ViewerBiz3/GenApi/GenApi.h>
#include <ViewerBiz3/ViewerBiz3.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace {

const std::string AreaCamera = "SimArea(SIM-AREA-01)";

class CameraList : public ViewerBiz3::IDeviceListUpdate {
public:
    void OnDeviceListUpdate(int kind, std::vector<std::string>, std::vector<std::string> cameras) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (kind == 0) {
            m_cameras = std::move(cameras);
            m_changed.notify_all();
        }
    }
    bool WaitFor(const std::string& camera)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(20), [&] {
            for (const std::string& id : m_cameras) {
                if (id == camera) {
                    return true;
                }
            }
            return false;
        });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_cameras;
};

const char* TourOpenCamera(GenApi::INodeMap& nodeMap)
{
    GenApi::CCategoryPtr root = nodeMap.GetNode("Root");
    GenApi::FeatureList_t features;
    if (!root.IsValid() || (root->GetFeatures(features), features.empty())) {
        return "no category tree";
    }
    GenApi::CEnumerationPtr pixelFormat = nodeMap.GetNode("PixelFormat");
    GenApi::StringList_t entries;
    pixelFormat->GetSymbolics(entries);
    if (entries.size() < 2 || pixelFormat->ToString() != "Mono8") {
        return "PixelFormat does not enumerate";
    }
    GenApi::CIntegerPtr width = nodeMap.GetNode("Width");
    if (!GenApi::IsReadable(width) || !GenApi::IsWritable(width) || !GenApi::IsAvailable(width)) {
        return "Width is not read-write";
    }
    const int64_t narrower = width->GetValue() - 8 * width->GetInc();
    width->SetValue(narrower);
    std::string text;
    if (width->GetValue() != narrower || ViewerBiz3::GetCameraNodeValue(AreaCamera, "Width", text) != 0 ||
        text != std::to_string(narrower)) {
        return "a Width written through the node map does not read back";
    }
    try {
        width->SetValue(width->GetMax() + width->GetInc());
        return "an out-of-range Width was accepted";
    } catch (const GenICam::OutOfRangeException&) {
    }
    try {
        GenApi::CFloatPtr notAFloat = nodeMap.GetNode("Width");
        notAFloat->GetValue();
        return "an empty pointer was dereferenced";
    } catch (const GenICam::GenericException& error) {
        if (std::string(error.GetDescription()).empty()) {
            return "an exception without description";
        }
    }
    return "";
}

} // namespace

const char* TourAreaCameraNodeMap()
{
    CameraList list;
    ViewerBiz3::RegisterDeviceListUpdateListener(&list);
    ViewerBiz3::SetTLTypeList(8);
    ViewerBiz3::RefreshCameraList(8);
    if (!list.WaitFor(AreaCamera)) {
        return "the simulated area camera was not listed";
    }
    ViewerBiz3::UnRegisterDeviceListUpdateListener(&list);
    if (ViewerBiz3::OpenCamera(AreaCamera) != 0) {
        return "the simulated area camera did not open";
    }
    auto* nodeMap = static_cast<GenApi::INodeMap*>(
        ViewerBiz3::GetAttrNodeMap(ViewerBiz3::FOCUS_CAMERA_FEATURES, AreaCamera, ViewerBiz3::NODEMAP_MODULE3));
    const char* failure = nodeMap != nullptr ? TourOpenCamera(*nodeMap) : "no node map";
    ViewerBiz3::CloseCamera(AreaCamera);
    return failure;
}
