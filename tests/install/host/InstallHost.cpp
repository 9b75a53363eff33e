// A minimal host: only the installed public headers, a listener of each kind a
// viewer needs first, and one round trip through the library.
#include <ViewerBiz3/ViewerBiz3.h>

#include <cstdio>
#include <cstdlib>

#include "NodeMapTour.h"

namespace {

class RoiAnswer : public ViewerBiz3::IROIDrawUpdate {
public:
    void OnROIDrawUpdate(std::string, int, int, int, int, int operation, int& index, bool& result, int, int) override
    {
        if (operation == 0) {
            index = 7;
            result = true;
        }
    }
};

class FrameReleaser : public ViewerBiz3::IImageUpdate {
public:
    void OnImageUpdate(std::string, void* image, int, int) override
    {
        if (image != nullptr) {
            static_cast<ZYLGENICAM::IImage*>(image)->Release();
        }
    }
};

int Fail(const char* what)
{
    std::fprintf(stderr, "host: %s\n", what);
    return 1;
}

} // namespace

int main()
{
    setenv("VIEWERBIZ3_SIMULATED_CAMERAS", "area", 1);
    if (ViewerBiz3::Init() == 0) {
        return Fail("Init did not start the library");
    }
    RoiAnswer roi;
    FrameReleaser frames;
    ViewerBiz3::RegisterROIUpdateListener(&roi);
    ViewerBiz3::RegisterImageUpdateListener("", &frames);

    int index = -1;
    bool result = false;
    ViewerBiz3::DrawROI("any", 1, 2, 3, 4, index, result, 0, 0);
    if (index != 7 || !result) {
        return Fail("the ROI listener was not reached");
    }
    if (ViewerBiz3::GetTLTypeList() != 15) {
        return Fail("unexpected transport-layer mask");
    }
    if (ViewerBiz3::GetAttrLayoutXML(ViewerBiz3::FOCUS_CAMERA, "no such camera") != nullptr) {
        return Fail("a description for an unknown camera");
    }
    const char* nodeMapFailure = TourAreaCameraNodeMap();
    if (*nodeMapFailure != '\0') {
        return Fail(nodeMapFailure);
    }
    ViewerBiz3::UnRegisterImageUpdateListener("", &frames);
    if (ViewerBiz3::UnInit() != 0) {
        return Fail("UnInit failed");
    }
    std::puts("host: ok");
    return 0;
}
