// Register addresses of our simulated cameras (see SimulatedCameraXml.h).
#pragma once

#include <cstdint>

namespace ZYLGENICAM {
namespace SimulatedRegisters {

// Stock Aravis fake-camera registers, read by its simulator.
constexpr uint32_t kWidth = 0x100;
constexpr uint32_t kHeight = 0x104;
constexpr uint32_t kSensorHeight = 0x118;
constexpr uint32_t kSensorWidth = 0x11c;
constexpr uint32_t kPixelFormat = 0x128;
constexpr uint32_t kFramePeriodUs = 0x138;
// GigE Vision bootstrap texts.
constexpr uint32_t kVendorName = 0x48;
constexpr uint32_t kModelName = 0x68;
constexpr uint32_t kDeviceVersion = 0x88;
constexpr uint32_t kSerialNumber = 0xd8;
constexpr uint32_t kUserDefinedName = 0xe8;
constexpr uint32_t kUserDefinedNameLength = 16;
constexpr uint32_t kTextLength = 32;
// Our own.
constexpr uint32_t kAcquisitionFrameCount = 0xb000;
constexpr uint32_t kEnableExtraction = 0xb100;
constexpr uint32_t kEnableImage = 0xb104;
constexpr uint32_t kEnableCalibration = 0xb108;
constexpr uint32_t kBatchEnable = 0xb10c;
constexpr uint32_t kBatchNumber = 0xb110;
constexpr uint32_t kAcquisitionLineCount = 0xb114;
constexpr uint32_t kScaler = 0xb118;
constexpr uint32_t kDepthDataType = 0xb11c;
constexpr uint32_t kZUpSizeInfo = 0xb120;
constexpr uint32_t kZDownSizeInfo = 0xb124;
constexpr uint32_t kXSizeInfo = 0xb128;
constexpr uint32_t kCenterImageY = 0xb12c;

} // namespace SimulatedRegisters
} // namespace ZYLGENICAM
