// A profile (3D line) camera: one profile or a batch of profiles per frame, three image
// modes selected through four switches on the device, and grab and delivery loops that
// count profiles rather than frames.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "camera/Camera.h"

class LPCamera : public Camera {
public:
    explicit LPCamera(ZYLGENICAM::ICamera* camera);
    ~LPCamera() override;

    int OpenCamera(int accessMode) override;
    // Upgrading is not supported for profile cameras: always -1.
    int FirmwareUpgrade(const std::string& filePath, int* progress, bool* done) override;
    void GrabImageFunction() override;

    // Reads the four switches and derives the image mode from them.
    void GetGrabMode();
    // 0 after writing the four switches of mode 0, 1 or 2; the first refused write's code
    // (mode unchanged); -1 for any other mode, which is stored all the same.
    int SetCameraImageMode(int mode);
    int GetCameraImageMode() const;

    int CameraUpgrade(const std::string& filePath, int option);
    // Reports done/total percent to the progress integer given to FirmwareUpgrade.
    void updateProgressValue(uint32_t done, uint32_t total);

protected:
    // Profiles go out oldest first with the mode and scaler; a batch is delivered whole and unpaced.
    DeliveryStyle CurrentDeliveryStyle() override;
    // Frames that arrive while the camera is marked offline are dropped.
    void DeliverFrame(ZYLGENICAM::IImage* image, const DeliveryStyle& style) override;

private:
    struct AcquisitionSettings {
        uint32_t batchNumber;
        uint32_t lineCount;
        bool depth16;
        uint64_t framesToAcquire;
    };
    AcquisitionSettings ReadAcquisitionSettings();
    // Profiles carried by a frame, and the bytes they occupy.
    uint64_t CountProfiles(ZYLGENICAM::IImage* image, int mode, bool depth16, uint64_t& payloadBytes) const;
    void QueueProfileImage(ZYLGENICAM::IImage* image, int mode, bool limited, uint64_t frameId,
                           uint64_t framesToAcquire);
    void RunAcquisition();

    std::atomic<bool> m_extractionEnabled{false};
    std::atomic<bool> m_imageEnabled{false};
    std::atomic<bool> m_calibrationEnabled{false};
    std::atomic<bool> m_batchEnabled{false};
    std::atomic<uint32_t> m_acquisitionLineCount{0};
    std::atomic<uint32_t> m_batchNumber{0};
    std::atomic<uint32_t> m_scaler{65536};
    std::atomic<int> m_imageMode{1};
    std::atomic<int*> m_upgradeProgress{nullptr};
};

// Unpacks a firmware archive; upgrades are not supported, so there is nothing to unpack.
int ExtractArchive(const std::string& source, const std::string& destination);
