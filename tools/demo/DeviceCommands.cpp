#include "DeviceCommands.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <vector>

#include <ViewerBiz3/GenApi/GenApi.h>
#include <ViewerBiz3/ViewerBiz3.h>

#include "FeatureTree.h"
#include "GrabMonitor.h"
#include "OpenedCamera.h"
#include "PngFile.h"

namespace {

using Clock = std::chrono::steady_clock;
using ViewerBiz3::GetCameraInfo;

const char* DescribeResult(int code)
{
    switch (code) {
    case 0:
        return "ok";
    case -1:
        return "unknown device, wrong state or failure";
    case -2:
        return "wrong kind of device, or refused by the camera SDK";
    case -4:
        return "no such feature";
    case -5:
        return "the feature cannot be read or written now";
    case -6:
        return "unsupported feature type";
    case -7:
        return "GenICam error";
    case -8:
        return "unexpected error in the feature access";
    case -9:
        return "the feature is not available";
    case -10:
        return "address conflict: another device uses the same IP address";
    case -11:
        return "refused while the camera is busy, or timeout";
    case -12:
        return "the camera is not open";
    default:
        return "camera SDK error";
    }
}

int ReportFailure(const std::string& what, int code)
{
    std::cerr << what << " failed: " << code << " (" << DescribeResult(code) << ")\n";
    return 1;
}

std::string KindName(const std::string& kind)
{
    static const char* const names[] = {"area camera", "profile camera",     "?",
                                        "USB camera",  "Camera Link camera", "show-mode camera"};
    const int value = std::atoi(kind.c_str());
    return kind + " (" + (kind.empty() || value < 0 || value > 5 ? std::string("?") : names[value]) + ")";
}

std::string OrDash(const std::string& text)
{
    return text.empty() ? std::string("-") : text;
}

std::string Absolute(const std::string& path)
{
    std::error_code ignored;
    const std::filesystem::path absolute = std::filesystem::absolute(path, ignored);
    return absolute.empty() ? path : absolute.string();
}

// The identifier of the camera the user names, or empty after telling why.
std::string FindCamera(LibrarySession& session, const std::string& camera)
{
    const std::string id = session.ResolveCamera(camera);
    if (id.empty()) {
        std::cerr << "No camera \"" << camera << "\" in the device list (see: vb3-demo list).\n";
    }
    return id;
}

std::vector<std::string> SortedCameraIds(LibrarySession& session)
{
    std::vector<std::string> ids = session.CameraIds();
    std::sort(ids.begin(), ids.end());
    return ids;
}

// A feature's current value as text. Integers are read through the camera's GenApi node map, whose ToString
// writes them in their representation (0x hexadecimal, dotted IP address, colon MAC address); the library's
// node-value call gives every integer in decimal.
bool ReadFeatureText(const std::string& id, GenApi::INodeMap* nodeMap, const std::string& name, std::string& value)
{
    GenApi::CIntegerPtr integer = nodeMap != nullptr ? nodeMap->GetNode(name) : nullptr;
    if (!integer.IsValid()) {
        return ViewerBiz3::GetCameraNodeValue(id, name, value) == 0;
    }
    try {
        value = integer->ToString(false, true);
        return true;
    } catch (const GenICam::GenericException&) {
        return false;
    }
}

void PrintCameraInfo(const std::string& id)
{
    const std::pair<const char*, ViewerBiz3::CAM_INFO> fields[] = {
        {"model", ViewerBiz3::CAM_MODEL_NAME},   {"serial", ViewerBiz3::CAM_SERIAL},
        {"vendor", ViewerBiz3::CAM_DEVICE_TEXT}, {"version", ViewerBiz3::CAM_DEVICE_TEXT2},
        {"adapter", ViewerBiz3::CAM_LIST_KEY},   {"IP address", ViewerBiz3::CAM_IP},
        {"MAC address", ViewerBiz3::CAM_MAC},    {"available", ViewerBiz3::CAM_AVAILABLE},
        {"online", ViewerBiz3::CAM_ONLINE},      {"opened", ViewerBiz3::CAM_OPENED},
    };
    std::cout << "Camera " << id << "\n";
    std::printf("  %-12s %s\n", "kind", KindName(GetCameraInfo(id, ViewerBiz3::CAM_KIND)).c_str());
    for (const auto& field : fields) {
        std::printf("  %-12s %s\n", field.first, OrDash(GetCameraInfo(id, field.second)).c_str());
    }
    std::fflush(stdout);

    const char* xml = ViewerBiz3::GetAttrLayoutXML(ViewerBiz3::FOCUS_CAMERA_FEATURES, id);
    if (xml == nullptr) {
        std::cout << "The camera publishes no feature description.\n";
        return;
    }
    FeatureTree tree;
    std::string error;
    if (!tree.Parse(xml, error)) {
        std::cout << "Feature description unreadable: " << error << "\n";
        return;
    }
    std::cout << "Features (" << tree.FeatureCount() << " nodes described; name, type, access, value, range):\n";
    auto* nodeMap = static_cast<GenApi::INodeMap*>(
        ViewerBiz3::GetAttrNodeMap(ViewerBiz3::FOCUS_CAMERA_FEATURES, id, ViewerBiz3::NODEMAP_MODULE3));
    tree.Print(std::cout, [&id, nodeMap](const std::string& name, std::string& value) {
        return ReadFeatureText(id, nodeMap, name, value);
    });
}

std::string StatusLine(const std::string& id, std::uint64_t delivered)
{
    char line[200];
    std::snprintf(line, sizeof(line), "  frames %s | %s fps | %s Mbit/s | errors %s | display %s fps | received %llu",
                  OrDash(GetCameraInfo(id, ViewerBiz3::CAM_FRAME_COUNT)).c_str(),
                  OrDash(GetCameraInfo(id, ViewerBiz3::CAM_FRAME_RATE)).c_str(),
                  OrDash(GetCameraInfo(id, ViewerBiz3::CAM_BANDWIDTH)).c_str(),
                  OrDash(GetCameraInfo(id, ViewerBiz3::CAM_ERROR_COUNT)).c_str(),
                  OrDash(GetCameraInfo(id, ViewerBiz3::CAM_DISPLAY_RATE)).c_str(),
                  static_cast<unsigned long long>(delivered));
    return line;
}

// Runs the acquisition until the limit, showing the statistics on one line.
// False when the limit was not reached within a generous time.
bool RunAcquisition(const std::string& id, const GrabLimit& limit, GrabMonitor& monitor)
{
    const auto begin = Clock::now();
    const double giveUpSeconds = limit.bySeconds ? limit.amount + 10.0 : std::max(30.0, limit.amount);
    auto lastShown = begin - std::chrono::seconds(1);
    for (;;) {
        monitor.WaitForStatistics(std::chrono::milliseconds(200));
        const auto now = Clock::now();
        const double elapsed = std::chrono::duration<double>(now - begin).count();
        const double frames = std::strtod(GetCameraInfo(id, ViewerBiz3::CAM_FRAME_COUNT).c_str(), nullptr);
        const bool reached = limit.bySeconds ? elapsed >= limit.amount : frames >= limit.amount;
        if (reached || now - lastShown >= std::chrono::milliseconds(200)) {
            std::printf("\r%-100s", StatusLine(id, monitor.DeliveredFrames()).c_str());
            std::fflush(stdout);
            lastShown = now;
        }
        if (reached) {
            return true;
        }
        if (elapsed > giveUpSeconds) {
            return false;
        }
    }
}

int GrabAndSave(const std::string& id, const GrabLimit& limit, const std::string& pngPath)
{
    GrabMonitor monitor(id);
    // These two lists are walked without a lock by the acquisition threads:
    // register before StartGrab and unregister only after StopGrab.
    ViewerBiz3::RegisterImageUpdateListener(id, &monitor);
    ViewerBiz3::RegisterAcqStatisticUpdateListener(&monitor);
    const int started = ViewerBiz3::StartGrab(id);
    bool reached = false;
    if (started == 0) {
        reached = RunAcquisition(id, limit, monitor);
        ViewerBiz3::StopGrab(id);
        std::printf("\n");
    }
    ViewerBiz3::UnRegisterAcqStatisticUpdateListener(&monitor);
    ViewerBiz3::UnRegisterImageUpdateListener(id, &monitor);
    if (started != 0) {
        return ReportFailure("StartGrab", started);
    }
    if (!reached) {
        std::cerr << "The grab limit was not reached in time; stopped.\n";
    }
    Frame frame;
    if (!monitor.CopyLastFrame(frame)) {
        std::cerr << "No complete frame was delivered.\n";
        return 1;
    }
    std::string error;
    if (!WritePng(frame, pngPath, error)) {
        std::cerr << "Saving the last frame failed: " << error << "\n";
        return 1;
    }
    std::printf("Saved frame %llu (%llux%llu, pixel format 0x%08llx) to %s\n",
                static_cast<unsigned long long>(frame.frameId), static_cast<unsigned long long>(frame.width),
                static_cast<unsigned long long>(frame.height), static_cast<unsigned long long>(frame.pixelFormat),
                Absolute(pngPath).c_str());
    return reached ? 0 : 1;
}

// A profile camera sends chunked profiles by default; image mode 0 makes it
// deliver a 16-bit height picture whose lines are successive profiles.
void PrepareForPicture(const std::string& id)
{
    if (GetCameraInfo(id, ViewerBiz3::CAM_KIND) != "1") {
        return;
    }
    const int result = ViewerBiz3::SetCameraImageMode(id, 0, true);
    if (result == 0) {
        std::cout << "-- profile camera switched to image mode 0 (profiles plus picture)\n";
    } else {
        ReportFailure("Switching to image mode 0", result);
    }
}

std::string DefaultPngPath(const std::string& id)
{
    std::string serial = GetCameraInfo(id, ViewerBiz3::CAM_SERIAL);
    std::replace_if(
        serial.begin(), serial.end(), [](char c) { return c == '/' || c == ' '; }, '_');
    return "vb3-" + (serial.empty() ? std::string("camera") : serial) + ".png";
}

// Opens the camera for one command; an error is reported and false returned.
bool Opened(const OpenedCamera& camera)
{
    if (camera.Result() != 0) {
        ReportFailure("Opening " + camera.Id(), camera.Result());
        return false;
    }
    return true;
}

// Finds and opens the camera the user names, runs the command on it and closes it again;
// 1 when the camera cannot be found or opened.
int WithOpenedCamera(LibrarySession& session, const std::string& camera,
                     const std::function<int(const std::string& id)>& command)
{
    const std::string id = FindCamera(session, camera);
    if (id.empty()) {
        return 1;
    }
    OpenedCamera opened(id);
    if (!Opened(opened)) {
        return 1;
    }
    return command(id);
}

void PrintFiles(const std::vector<std::string>& images)
{
    std::cout << "Files:\n";
    for (const std::string& image : images) {
        std::cout << "  image     " << Absolute(image) << "\n";
    }
    std::cout << "  log       " << LibrarySession::LogFilePath() << "\n";
    const std::string settings = LibrarySession::SettingsFilePath();
    std::cout << "  settings  " << settings
              << (std::filesystem::exists(settings) ? "" : "  (absent: the library only updates an existing file)")
              << "\n";
}

// Open, describe, grab for two seconds, save, close.
int TourCamera(const std::string& id, std::vector<std::string>& images)
{
    int result = 1;
    {
        OpenedCamera opened(id);
        if (!Opened(opened)) {
            return 1;
        }
        std::cout << "-- opened\n";
        PrintCameraInfo(id);
        PrepareForPicture(id);
        std::cout << "-- grab for 2 s\n";
        const std::string image = DefaultPngPath(id);
        result = GrabAndSave(id, GrabLimit{true, 2.0}, image);
        if (result == 0) {
            images.push_back(image);
        }
    }
    std::cout << "-- closed\n";
    return result;
}

} // namespace

int ListDevices(LibrarySession& session)
{
    const std::vector<std::string> ids = SortedCameraIds(session);
    std::printf("%-36s %-22s %-14s %-16s %s\n", "IDENTIFIER", "KIND", "ADAPTER", "ADDRESS", "AVAILABLE");
    for (const std::string& id : ids) {
        std::printf("%-36s %-22s %-14s %-16s %s\n", id.c_str(),
                    KindName(GetCameraInfo(id, ViewerBiz3::CAM_KIND)).c_str(),
                    OrDash(GetCameraInfo(id, ViewerBiz3::CAM_LIST_KEY)).c_str(),
                    OrDash(GetCameraInfo(id, ViewerBiz3::CAM_IP)).c_str(),
                    GetCameraInfo(id, ViewerBiz3::CAM_AVAILABLE) == "1" ? "yes" : "no");
    }
    std::printf("%zu camera(s)\n", ids.size());
    return 0;
}

int ShowCameraInfo(LibrarySession& session, const std::string& camera)
{
    return WithOpenedCamera(session, camera, [](const std::string& id) {
        PrintCameraInfo(id);
        return 0;
    });
}

int GetFeature(LibrarySession& session, const std::string& camera, const std::string& feature)
{
    return WithOpenedCamera(session, camera, [&feature](const std::string& id) {
        std::string value;
        const int result = ViewerBiz3::GetCameraNodeValue(id, feature, value);
        if (result != 0) {
            return ReportFailure("Reading " + feature, result);
        }
        std::cout << feature << " = " << value << "\n";
        return 0;
    });
}

int SetFeature(LibrarySession& session, const std::string& camera, const std::string& feature, const std::string& value)
{
    return WithOpenedCamera(session, camera, [&feature, &value](const std::string& id) {
        const int result = ViewerBiz3::SetCameraNodeValue(id, feature, value);
        if (result != 0) {
            return ReportFailure("Writing " + feature, result);
        }
        std::string readBack;
        ViewerBiz3::GetCameraNodeValue(id, feature, readBack);
        std::cout << feature << " = " << readBack << "\n";
        return 0;
    });
}

int RenameCamera(LibrarySession& session, const std::string& camera, const std::string& newName)
{
    return WithOpenedCamera(session, camera, [&newName](const std::string& id) {
        const int result = ViewerBiz3::ModifyCameraId(id, newName);
        if (result != 0) {
            return ReportFailure("Renaming " + id, result);
        }
        std::cout << id << " is now " << GetCameraInfo(id, ViewerBiz3::CAM_NAME)
                  << " (written to the device's DeviceUserID)\n";
        return 0;
    });
}

int ChangeAddress(LibrarySession& session, const std::string& camera, const AddressChange& change)
{
    const std::string id = FindCamera(session, camera);
    if (id.empty()) {
        return 1;
    }
    // Only GigE cameras have an address; the change is searched for by broadcast, so nothing else asks.
    if (GetCameraInfo(id, ViewerBiz3::CAM_IP).empty()) {
        std::cerr << id << " is no GigE camera: it has no address to change.\n";
        return 1;
    }
    const int result = ViewerBiz3::ModifyCameraIp(id, change.address, change.mask, change.gateway, change.persistent);
    if (result != 0) {
        return ReportFailure("Changing the address of " + id, result);
    }
    // The library refreshes the list after the change; wait for that list.
    session.RefreshDeviceList(std::chrono::seconds(20));
    std::cout << id << " now answers at " << OrDash(GetCameraInfo(id, ViewerBiz3::CAM_IP))
              << (change.persistent ? " (stored in the camera)\n" : " (until the camera restarts)\n");
    return 0;
}

int GrabToPng(LibrarySession& session, const std::string& camera, const GrabLimit& limit, const std::string& pngPath)
{
    return WithOpenedCamera(session, camera, [&limit, &pngPath](const std::string& id) {
        PrepareForPicture(id);
        const int result = GrabAndSave(id, limit, pngPath.empty() ? DefaultPngPath(id) : pngPath);
        std::cout << "Log file: " << LibrarySession::LogFilePath() << "\n";
        return result;
    });
}

int RunDemo(LibrarySession& session)
{
    std::cout << "== Device list\n";
    ListDevices(session);
    const std::vector<std::string> ids = SortedCameraIds(session);
    const std::pair<const char*, const char*> tour[] = {{"area", "0"}, {"profile", "1"}};
    std::vector<std::string> images;
    int exitCode = 0;
    for (const auto& stop : tour) {
        const auto found = std::find_if(ids.begin(), ids.end(), [&](const std::string& id) {
            return GetCameraInfo(id, ViewerBiz3::CAM_KIND) == stop.second;
        });
        if (found == ids.end()) {
            std::cerr << "No " << stop.first << " camera in the list.\n";
            exitCode = 1;
            continue;
        }
        std::cout << "\n== The " << stop.first << " camera " << *found << "\n";
        if (TourCamera(*found, images) != 0) {
            exitCode = 1;
        }
    }
    std::cout << "\n";
    PrintFiles(images);
    return exitCode;
}
