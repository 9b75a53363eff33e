// The part of Camera a host reads and writes by CAM_INFO.
#include "camera/Camera.h"

#include "camera/CameraHost.h"

using ViewerBiz3::CAM_INFO;

namespace {
std::string AsDecimal(bool flag)
{
    return flag ? "1" : "0";
}
} // namespace

std::string Camera::GetInfo(CAM_INFO info)
{
    switch (info) {
    case ViewerBiz3::CAM_AVAILABLE:
        return AsDecimal(m_available.load());
    case ViewerBiz3::CAM_ONLINE:
        return AsDecimal(m_online.load());
    case ViewerBiz3::CAM_OPENED:
        return AsDecimal(m_opened.load());
    case ViewerBiz3::CAM_FLAG3:
        return AsDecimal(m_flag3.load());
    case ViewerBiz3::CAM_KIND:
        return std::to_string(m_kind.load());
    case ViewerBiz3::CAM_GRABBING:
        return AsDecimal(m_grabbing.load());
    case ViewerBiz3::CAM_SAME_SEGMENT:
        return AsDecimal(m_sameSegment.load());
    default:
        break;
    }
    std::string statistic;
    if (m_statistics.Format(info, statistic))
        return statistic;
    return m_texts.Get(info);
}

int Camera::SetInfo(CAM_INFO info, const std::string& value)
{
    if (!CameraInfoTable::IsHostSettable(info))
        return -1;
    SetText(info, value);
    if (CameraHost* host = GetCameraHost())
        host->NotifyAcqStatisticUpdate(GetName(), true);
    return 0;
}

int Camera::SetText(CAM_INFO info, const std::string& text)
{
    // Name and list key have their own setters; the alternative numbers only read.
    if (!CameraInfoTable::IsWritable(info))
        return -1;
    m_texts.Put(info, text);
    return 0;
}
