// What kind of camera an entry of the device list is; a host reads the number as CAM_INFO 6.
#pragma once

#include <cstdint>

enum class CameraKind : uint16_t {
    Area = 0,
    Profile = 1,
    Usb = 3,
    CameraLink = 4,
    ShowMode = 5,
};

// Kinds below this one are GigE Vision cameras.
constexpr CameraKind firstNonGigeKind = CameraKind::Usb;
