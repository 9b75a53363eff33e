#include "sdk/aravis/AravisCameraInfo.h"

namespace ZYLGENICAM {

const char* AravisCameraInfo::GetGigEInfo(int item)
{
    if (m_record.tlType != TL_GIGE)
        return "";
    switch (item) {
    case GIGE_IP:
        return m_record.ipAddress.c_str();
    case GIGE_MAC:
        return m_record.macAddress.c_str();
    case GIGE_MASK:
        return m_record.subnetMask.c_str();
    case GIGE_GATEWAY:
        return m_record.gateway.c_str();
    case GIGE_HOST_INTERFACE_IP:
        return m_record.hostInterfaceAddress.c_str();
    default:
        return "";
    }
}

} // namespace ZYLGENICAM
