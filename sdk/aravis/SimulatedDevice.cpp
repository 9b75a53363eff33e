#include "sdk/aravis/SimulatedDevice.h"

#include <glib/gstdio.h>
#include <unistd.h>

#include <mutex>
#include <vector>

#include "sdk/aravis/SimulatedCameraXml.h"
#include "sdk/aravis/SimulatedFrameFiller.h"
#include "sdk/aravis/SimulatedIdentity.h"
#include "sdk/aravis/SimulatedRegisters.h"
#include "genapi/GenicamParsing.h"

namespace ZYLGENICAM {

namespace {

void ReplaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

struct ProfileInteger {
    const char* name;
    uint32_t address;
    const char* min;
    const char* max;
    bool isSigned;
};

const ProfileInteger kProfileIntegers[] = {
    {"EnableExtraction", SimulatedRegisters::kEnableExtraction, "0", "1", false},
    {"EnableImage", SimulatedRegisters::kEnableImage, "0", "1", false},
    {"EnableCalibration", SimulatedRegisters::kEnableCalibration, "0", "1", false},
    {"BatchEnable", SimulatedRegisters::kBatchEnable, "0", "1", false},
    {"BatchNumber", SimulatedRegisters::kBatchNumber, "1", "200", false},
    {"AcquisitionLineCount", SimulatedRegisters::kAcquisitionLineCount, "1", "1000000", false},
    {"Scaler", SimulatedRegisters::kScaler, "1", "16777216", false},
    {"ZUpSizeInfo", SimulatedRegisters::kZUpSizeInfo, "-1000", "1000", true},
    {"ZDownSizeInfo", SimulatedRegisters::kZDownSizeInfo, "-1000", "1000", true},
    {"XSizeInfo", SimulatedRegisters::kXSizeInfo, "1", "10000", false},
};

std::string HexAddress(uint32_t address)
{
    char text[16];
    g_snprintf(text, sizeof text, "0x%x", address);
    return text;
}

std::string ProfileRegisters()
{
    std::string xml;
    for (const ProfileInteger& feature : kProfileIntegers) {
        std::string item = SimulatedCameraXml::kIntegerFeature;
        ReplaceAll(item, "%NAME%", feature.name);
        ReplaceAll(item, "%ADDRESS%", HexAddress(feature.address));
        ReplaceAll(item, "%MIN%", feature.min);
        ReplaceAll(item, "%MAX%", feature.max);
        ReplaceAll(item, "%SIGN%", feature.isSigned ? "Signed" : "Unsigned");
        xml += item;
    }
    for (auto [name, address] : {std::pair<const char*, uint32_t>{"DepthDataType", SimulatedRegisters::kDepthDataType},
                                 std::pair<const char*, uint32_t>{"CenterImageY", SimulatedRegisters::kCenterImageY}}) {
        std::string item = SimulatedCameraXml::kRegisterOnly;
        ReplaceAll(item, "%NAME%", name);
        ReplaceAll(item, "%ADDRESS%", HexAddress(address));
        xml += item;
    }
    return xml;
}

GObjectPtr<ArvDevice> CreateFakeDevice(const std::string& serial, const std::string& description)
{
    char* path = nullptr;
    GError* error = nullptr;
    int fd = g_file_open_tmp("viewerbiz3-simulated-XXXXXX.xml", &path, &error);
    if (fd < 0) {
        g_clear_error(&error);
        return nullptr;
    }
    bool written = write(fd, description.data(), description.size()) == ssize_t(description.size());
    close(fd);
    GObjectPtr<ArvDevice> device;
    if (written) {
        // The parsing lock also keeps the process-wide description file name ours until the device is made.
        const auto parsing = GenApi_3_4::LockGenicamParsing();
        arv_set_fake_camera_genicam_filename(path);
        device.reset(arv_fake_device_new(serial.c_str(), &error));
        arv_set_fake_camera_genicam_filename(nullptr);
        g_clear_error(&error);
    }
    g_unlink(path);
    g_free(path);
    return device;
}

} // namespace

std::string SimulatedDevice::BuildDescription(SimulatedKind kind)
{
    const SimulatedIdentity& identity = SimulatedIdentity::Of(kind);
    std::string xml = SimulatedCameraXml::kHeader;
    ReplaceAll(xml, "%MODEL%", identity.model);
    bool profile = kind == SimulatedKind::Profile;
    ReplaceAll(xml, "%EXTRA_CATEGORY%", profile ? "<pFeature>ProfileControl</pFeature>" : "");
    ReplaceAll(xml, "%PIXEL_FORMATS%",
               profile ? SimulatedCameraXml::kProfilePixelFormats : SimulatedCameraXml::kAreaPixelFormats);
    if (profile) {
        std::string features = SimulatedCameraXml::kProfileFeatures;
        ReplaceAll(features, "%PROFILE_REGISTERS%", ProfileRegisters());
        xml += features;
    } else {
        xml +=
            kind == SimulatedKind::ShowMode ? SimulatedCameraXml::kShowModePayload : SimulatedCameraXml::kImagePayload;
    }
    xml += SimulatedCameraXml::kFooter;
    return xml;
}

std::shared_ptr<SimulatedDevice> SimulatedDevice::Create(SimulatedKind kind)
{
    GObjectPtr<ArvDevice> device = CreateFakeDevice(SimulatedIdentity::Of(kind).serial, BuildDescription(kind));
    if (!device)
        return nullptr;
    return std::make_shared<SimulatedDevice>(kind, std::move(device));
}

SimulatedDevice::SimulatedDevice(SimulatedKind kind, GObjectPtr<ArvDevice> device)
    : m_kind(kind), m_device(std::move(device)),
      m_camera(arv_fake_device_get_fake_camera(ARV_FAKE_DEVICE(m_device.get())))
{
    WriteDefaults();
    SimulatedFrameFiller::Install(m_camera, kind);
}

void SimulatedDevice::WriteText(uint32_t address, uint32_t length, const std::string& text)
{
    std::vector<char> padded(length, '\0');
    text.copy(padded.data(), length - 1);
    arv_fake_camera_write_memory(m_camera, address, length, padded.data());
}

std::string SimulatedDevice::ReadText(uint32_t address, uint32_t length) const
{
    std::vector<char> text(length + 1, '\0');
    arv_fake_camera_read_memory(m_camera, address, length, text.data());
    return std::string(text.data());
}

void SimulatedDevice::WriteRegister(uint32_t address, uint32_t value)
{
    arv_fake_camera_write_register(m_camera, address, value);
}

void SimulatedDevice::WriteDefaults()
{
    namespace R = SimulatedRegisters;
    const SimulatedIdentity& identity = SimulatedIdentity::Of(m_kind);
    WriteText(R::kVendorName, R::kTextLength, identity.vendor);
    WriteText(R::kModelName, R::kTextLength, identity.model);
    WriteText(R::kDeviceVersion, R::kTextLength, identity.version);
    WriteText(R::kUserDefinedName, R::kUserDefinedNameLength, identity.userName);
    WriteRegister(R::kSensorWidth, 4096);
    WriteRegister(R::kSensorHeight, 4096);
    WriteRegister(R::kWidth, identity.width);
    WriteRegister(R::kHeight, identity.height);
    WriteRegister(R::kPixelFormat, identity.pixelFormat);
    WriteRegister(R::kFramePeriodUs, 1000000 / identity.framesPerSecond);
    WriteRegister(R::kAcquisitionFrameCount, 10);
    if (m_kind != SimulatedKind::Profile)
        return;
    // Mode 1 (calibrated profiles, one per frame); values differ from the host's fallbacks so
    // that reading them is visible.
    WriteRegister(R::kEnableExtraction, 1);
    WriteRegister(R::kEnableImage, 0);
    WriteRegister(R::kEnableCalibration, 1);
    WriteRegister(R::kBatchEnable, 0);
    WriteRegister(R::kBatchNumber, 100);
    WriteRegister(R::kAcquisitionLineCount, 1000);
    WriteRegister(R::kScaler, 65536);
    WriteRegister(R::kDepthDataType, 16);
    WriteRegister(R::kZUpSizeInfo, 12);
    WriteRegister(R::kZDownSizeInfo, uint32_t(-12));
    WriteRegister(R::kXSizeInfo, 96);
    WriteRegister(R::kCenterImageY, 1);
}

bool SimulatedDevice::TryOpen()
{
    bool expected = false;
    return m_open.compare_exchange_strong(expected, true);
}

void SimulatedDevice::CloseAccess()
{
    m_open.store(false);
}

} // namespace ZYLGENICAM
