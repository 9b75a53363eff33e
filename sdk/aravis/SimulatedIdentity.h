// Who each simulated camera says it is, and its start-up image settings.
#pragma once

#include <cstdint>

#include "sdk/aravis/SimulatedKind.h"

namespace ZYLGENICAM {

struct SimulatedIdentity {
    const char* serial;
    const char* model;
    const char* userName;
    const char* vendor;
    const char* version;
    uint32_t width;
    uint32_t height;
    uint32_t pixelFormat;
    uint32_t framesPerSecond;

    static const SimulatedIdentity& Of(SimulatedKind kind)
    {
        static const SimulatedIdentity area{"SIM-AREA-01", "VB3-Sim-Area", "SimArea", "ViewerBiz3", "1.0", 640,
                                            480,           0x01080001,     100};
        static const SimulatedIdentity showMode{
            "SIM-SL-01", "VB3-Sim-QV-RM10", "SimShowMode", "ViewerBiz3", "1.0", 640, 480, 0x01080001, 50};
        static const SimulatedIdentity profile{"F-SIM-01", "VB3-Sim-Profile", "SimProfile", "ViewerBiz3", "1.0", 3200,
                                               32,         0x01100007,        100};
        switch (kind) {
        case SimulatedKind::ShowMode:
            return showMode;
        case SimulatedKind::Profile:
            return profile;
        case SimulatedKind::Area:
            break;
        }
        return area;
    }
};

} // namespace ZYLGENICAM
