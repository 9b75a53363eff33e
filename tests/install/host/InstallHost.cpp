// A minimal host: only the installed public headers, and the simulated area camera's feature node
// map walked through the installed GenApi headers, as a property grid does.
#include <ViewerBiz3/GenApi/GenApi.h>
#include <ViewerBiz3/ViewerBiz3.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

const std::string AreaCamera = "SimArea(SIM-AREA-01)";

// Empty on success, else what went wrong.
const char* TourNodeMap(GenApi::INodeMap& nodeMap)
{
    GenApi::CCategoryPtr root = nodeMap.GetNode("Root");
    GenApi::FeatureList_t features;
    if (!root.IsValid() || (root->GetFeatures(features), features.empty()))
        return "no category tree";
    GenApi::CIntegerPtr width = nodeMap.GetNode("Width");
    if (!GenApi::IsReadable(width) || !GenApi::IsWritable(width) || !GenApi::IsAvailable(width))
        return "Width is not read-write";
    const int64_t narrower = width->GetValue() - 8 * width->GetInc();
    width->SetValue(narrower);
    std::string text;
    if (width->GetValue() != narrower || ViewerBiz3::GetCameraNodeValue(AreaCamera, "Width", text) != 0 ||
        text != std::to_string(narrower))
        return "a Width written through the node map does not read back";
    // An exception thrown inside the library is caught by its installed type.
    try {
        width->SetValue(width->GetMax() + width->GetInc());
        return "an out-of-range Width was accepted";
    } catch (const GenICam::OutOfRangeException&) {
    }
    return "";
}

int Fail(const char* what)
{
    std::fprintf(stderr, "host: %s\n", what);
    return 1;
}

} // namespace

int main()
{
    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "area", 1);
    if (ViewerBiz3::Init() == 0)
        return Fail("Init did not start the library");
    ViewerBiz3::SetTLTypeList(8);
    ViewerBiz3::RefreshCameraList(8);
    // The discovery thread lists the camera a moment later.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (ViewerBiz3::OpenCamera(AreaCamera) != 0) {
        if (std::chrono::steady_clock::now() > deadline)
            return Fail("the simulated area camera was not listed or did not open");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    auto* nodeMap = static_cast<GenApi::INodeMap*>(
        ViewerBiz3::GetAttrNodeMap(ViewerBiz3::FOCUS_CAMERA_FEATURES, AreaCamera, ViewerBiz3::NODEMAP_MODULE3));
    const char* failure = nodeMap != nullptr ? TourNodeMap(*nodeMap) : "no node map";
    ViewerBiz3::CloseCamera(AreaCamera);
    if (*failure != '\0')
        return Fail(failure);
    if (ViewerBiz3::UnInit() != 0)
        return Fail("UnInit failed");
    std::puts("host: ok");
    return 0;
}
