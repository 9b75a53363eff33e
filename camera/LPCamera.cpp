#include "camera/LPCamera.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <cstdlib>

#include "camera/RateRing.h"
#include "log/Log.h"
#include "node/NodeAccess.h"

namespace {
constexpr int notifyHost = 1;
constexpr uint64_t grabTimeoutMs = 300;
constexpr uint64_t statisticsPeriodMs = 201;
// Profile devices report a read without frame under this code as well as under SDK_TIMEOUT.
constexpr int sdkProfileTimeout = -12;
constexpr int batchMode = 2;
constexpr int singleProfileMode = 1;
constexpr uint64_t bytesPerProfile16 = 6400;
constexpr uint64_t bytesPerProfile32 = 12800;
// The chunk header the device puts in front of the profile data.
constexpr uint64_t chunkHeaderBytes = 24;
constexpr double bitsPerMegabit = 125000.0;
constexpr auto switchWritePause = std::chrono::milliseconds(10);

const std::array<const char*, 4> modeSwitches = {"EnableExtraction", "EnableImage", "EnableCalibration", "BatchEnable"};
// Switch values per image mode, in the order of modeSwitches.
const std::array<std::array<bool, 4>, 3> modeTable = {{
    {true, true, false, false},
    {true, false, true, false},
    {true, false, true, true},
}};

// The switches are meant to be integer features holding 0 or 1, but some devices model
// them as GenICam booleans, which read as "True"/"False"; both spellings are accepted.
bool SwitchIsOn(const std::string& text)
{
    if (text == "True")
        return true;
    if (text == "False")
        return false;
    return std::atoi(text.c_str()) != 0;
}
} // namespace

LPCamera::LPCamera(ZYLGENICAM::ICamera* camera) : Camera(camera)
{
    SetKind(CameraKind::Profile);
}

LPCamera::~LPCamera()
{
    ShutDownForDestruction();
}

int LPCamera::OpenCamera(int accessMode)
{
    const int result = Camera::OpenCamera(accessMode);
    if (result != 0)
        return result;
    GetGrabMode();
    std::string text;
    SetText(ViewerBiz3::CAM_Z_UP_SIZE, GetNodeValue("ZUpSizeInfo", text, true) == 0 ? text : "9");
    SetText(ViewerBiz3::CAM_Z_DOWN_SIZE, GetNodeValue("ZDownSizeInfo", text, true) == 0 ? text : "-9");
    int outlineLength = 3200;
    float xSize = 112.0f;
    if (GetNodeValue("OutlineLengthMax", text, true) == 0 && std::atoi(text.c_str()) > 0)
        outlineLength = std::atoi(text.c_str());
    if (GetNodeValue("XSizeInfo", text, true) == 0)
        xSize = std::strtof(text.c_str(), nullptr);
    SetText(ViewerBiz3::CAM_CONTOUR_SPACER, std::to_string(xSize / outlineLength));
    SetNodeValue("CenterImageY", "Off", true);
    return 0;
}

void LPCamera::GetGrabMode()
{
    std::array<std::atomic<bool>*, 4> switches = {&m_extractionEnabled, &m_imageEnabled, &m_calibrationEnabled,
                                                  &m_batchEnabled};
    for (std::size_t i = 0; i < modeSwitches.size(); ++i) {
        std::string text;
        if (GetNodeValue(modeSwitches[i], text, true) != 0)
            return;
        switches[i]->store(SwitchIsOn(text));
    }
    const bool calibratedProfiles = m_extractionEnabled.load() && m_calibrationEnabled.load() && !m_imageEnabled.load();
    if (calibratedProfiles)
        m_imageMode.store(m_batchEnabled.load() ? batchMode : singleProfileMode);
    else
        m_imageMode.store(0);
}

int LPCamera::SetCameraImageMode(int mode)
{
    if (mode < 0 || mode >= static_cast<int>(modeTable.size())) {
        m_imageMode.store(mode);
        return -1;
    }
    for (std::size_t i = 0; i < modeSwitches.size(); ++i) {
        const int result = SetNodeValue(modeSwitches[i], modeTable[mode][i] ? "1" : "0", true);
        if (result != 0)
            return result;
        // The device needs a moment between switch changes.
        if (i + 1 < modeSwitches.size())
            std::this_thread::sleep_for(switchWritePause);
    }
    m_imageMode.store(mode);
    return 0;
}

int LPCamera::GetCameraImageMode() const
{
    return m_imageMode.load();
}

int LPCamera::FirmwareUpgrade(const std::string&, int* progress, bool*)
{
    m_upgradeProgress.store(progress);
    return -1;
}

int LPCamera::CameraUpgrade(const std::string&, int)
{
    return -1;
}

void LPCamera::updateProgressValue(uint32_t done, uint32_t total)
{
    int* progress = m_upgradeProgress.load();
    if (!progress || total == 0)
        return;
    *progress = static_cast<int>(static_cast<uint64_t>(done) * 100 / total);
}

int ExtractArchive(const std::string&, const std::string&)
{
    return 0;
}

LPCamera::AcquisitionSettings LPCamera::ReadAcquisitionSettings()
{
    AcquisitionSettings settings{};
    std::string text = "100";
    GetNodeValue("BatchNumber", text, true);
    settings.batchNumber = static_cast<uint32_t>(std::atoi(text.c_str()));
    GetNodeValue("AcquisitionLineCount", text, true);
    settings.lineCount = static_cast<uint32_t>(std::atoi(text.c_str()));
    m_batchNumber.store(settings.batchNumber);
    m_acquisitionLineCount.store(settings.lineCount);

    std::string offsetY = "0";
    GetNodeValue("OffsetY", offsetY, true);
    SetText(ViewerBiz3::CAM_OFFSET_Y, offsetY);

    std::string scaler;
    std::string message;
    if (Utilities::GetNodeValue(GetFeatureNodeMap(), "Scaler", scaler, message) == 0)
        m_scaler.store(static_cast<uint32_t>(std::atoi(scaler.c_str())));

    std::string depth;
    GetNodeValue("DepthDataType", depth, true);
    settings.depth16 = depth.find("16") != std::string::npos;

    // A batch number of 0 would divide by zero: such a camera acquires no limited batch.
    settings.framesToAcquire = settings.batchNumber == 0
                                   ? 0
                                   : (uint64_t{settings.lineCount} + settings.batchNumber - 1) / settings.batchNumber;
    return settings;
}

uint64_t LPCamera::CountProfiles(ZYLGENICAM::IImage* image, int mode, bool depth16, uint64_t& payloadBytes) const
{
    payloadBytes = 0;
    if (mode != singleProfileMode && mode != batchMode) {
        payloadBytes = PayloadFromPixelFormat(image);
        return 1;
    }
    const std::list<ZYLGENICAM::IChunk*> chunks = image->GetChunkList();
    if (chunks.size() < 2 || !*std::next(chunks.begin()))
        return 0;
    const uint64_t dataBytes = (*std::next(chunks.begin()))->GetChunkSize();
    payloadBytes = dataBytes + chunkHeaderBytes;
    if (mode == singleProfileMode)
        return 1;
    return dataBytes / (depth16 ? bytesPerProfile16 : bytesPerProfile32);
}

void LPCamera::QueueProfileImage(ZYLGENICAM::IImage* image, int mode, bool limited, uint64_t frameId,
                                 uint64_t framesToAcquire)
{
    if (mode != batchMode) {
        m_acquisition.QueueImageKeepingNewest(image);
        return;
    }
    // Batches are all delivered, in order; frames past a limited acquisition are dropped.
    if (limited && frameId > framesToAcquire) {
        image->Release();
        return;
    }
    m_acquisition.QueueImage(image);
}

void LPCamera::GrabImageFunction()
{
    for (;;) {
        if (m_acquisition.IsGrabPauseSet())
            SetText(ViewerBiz3::CAM_ACQ_LIMIT, "0");
        if (!m_acquisition.WaitForGrabStart())
            return;
        RunAcquisition();
    }
}

void LPCamera::RunAcquisition()
{
    uint64_t lastId = 0;
    const bool limited = GetInfo(ViewerBiz3::CAM_ACQ_LIMIT) == "1";
    const AcquisitionSettings settings = ReadAcquisitionSettings();
    const uint32_t bandwidthDivisor = settings.batchNumber == 0 ? 1 : settings.batchNumber;

    uint64_t lastStatistics = NowMs();
    RateRing ring(lastStatistics);
    uint64_t profiles = 0;
    uint64_t errors = 0;
    double rate = 0;
    double bandwidth = 0;
    PublishCounters(0, 0);

    for (;;) {
        ZYLGENICAM::IImage* image = nullptr;
        const int result = GrabImage(image, grabTimeoutMs);
        if (m_acquisition.GrabShouldPause()) {
            if (image)
                image->Release();
            PublishCounters(profiles, errors);
            return;
        }
        const int mode = GetCameraImageMode();
        const uint64_t now = NowMs();
        uint64_t frameId = 0;
        if (image) {
            frameId = image->GetFrameId();
            // One profile per frame in mode 1 makes ids skip by design.
            if (frameId - lastId > 1 && mode != singleProfileMode)
                Utilities::LogInfo(GetName(),
                                   "The frame id increment wrong, pre id = " + std::to_string(lastId) +
                                       ", current id = " + std::to_string(frameId),
                                   notifyHost);
            lastId = frameId;
        }
        const uint64_t divisor = mode == batchMode ? bandwidthDivisor : 1;
        if (result != ZYLGENICAM::SDK_OK) {
            if (image)
                image->Release();
            if (result == ZYLGENICAM::SDK_TIMEOUT || result == sdkProfileTimeout) {
                if (m_statistics.FrameCount() != profiles)
                    PublishStatistics(profiles, errors, rate, bandwidth / divisor);
                continue;
            }
            ++errors;
            LogGrabFailure(result, lastId);
            m_acquisition.PauseAfterFailedRead(result);
            continue;
        }

        uint64_t payloadBytes = 0;
        const uint64_t frameProfiles = CountProfiles(image, mode, settings.depth16, payloadBytes);
        profiles += frameProfiles;
        ring.CountNewest(frameProfiles);
        QueueProfileImage(image, mode, limited, frameId, settings.framesToAcquire);

        rate = ring.Rate(now);
        bandwidth = rate * static_cast<double>(payloadBytes) / bitsPerMegabit;
        ring.Shift(now);

        // A limited batch acquisition with no frames left to acquire publishes and stops at once.
        const bool batchComplete = limited && mode == batchMode && frameId >= settings.framesToAcquire;
        if (now - lastStatistics < statisticsPeriodMs && !batchComplete)
            continue;
        PublishStatistics(profiles, errors, rate, bandwidth / divisor);
        lastStatistics = now;

        if (batchComplete) {
            StopAtFrameLimit(true);
            return;
        }
    }
}

DeliveryStyle LPCamera::CurrentDeliveryStyle()
{
    const int mode = GetCameraImageMode();
    return {true, mode == batchMode, mode, static_cast<int>(m_scaler.load())};
}

void LPCamera::DeliverFrame(ZYLGENICAM::IImage* image, const DeliveryStyle& style)
{
    if (image && !IsMarkedOnline()) {
        image->Release();
        return;
    }
    Camera::DeliverFrame(image, style);
}
