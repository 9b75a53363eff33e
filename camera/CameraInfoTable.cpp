#include "camera/CameraInfoTable.h"

#include <initializer_list>
#include <utility>

using ViewerBiz3::CAM_INFO;

namespace {
enum class Access { Internal, Writable, HostSettable };

struct TextField {
    CAM_INFO info;
    const char* initial;
    Access access;
};

const TextField textFields[] = {
    {ViewerBiz3::CAM_NAME, "", Access::Internal},
    {ViewerBiz3::CAM_LIST_KEY, "", Access::Internal},
    {ViewerBiz3::CAM_MAC, "", Access::Writable},
    {ViewerBiz3::CAM_IP, "", Access::Writable},
    {ViewerBiz3::CAM_MASK, "", Access::Writable},
    {ViewerBiz3::CAM_GATEWAY, "", Access::Writable},
    {ViewerBiz3::CAM_MODEL_NAME, "", Access::Writable},
    {ViewerBiz3::CAM_DEVICE_TEXT, "", Access::Writable},
    {ViewerBiz3::CAM_DEVICE_TEXT2, "", Access::Writable},
    {ViewerBiz3::CAM_SERIAL, "", Access::Writable},
    {ViewerBiz3::CAM_HOST_TEXT40, "-", Access::HostSettable},
    {ViewerBiz3::CAM_HOST_TEXT41, "---", Access::HostSettable},
    {ViewerBiz3::CAM_HOST_TEXT42, "-, -", Access::HostSettable},
    {ViewerBiz3::CAM_HOST_TEXT43, "- - -", Access::HostSettable},
    {ViewerBiz3::CAM_IMAGE_BITS, "16", Access::HostSettable},
    {ViewerBiz3::CAM_SAMPLING_RATIO, "4", Access::HostSettable},
    {ViewerBiz3::CAM_CONTOUR_SPACER, "0.002", Access::HostSettable},
    {ViewerBiz3::CAM_REAL_COLOR, "0", Access::HostSettable},
    {ViewerBiz3::CAM_PROFILE_TEXT54, "0", Access::HostSettable},
    {ViewerBiz3::CAM_Z_UP_SIZE, "", Access::HostSettable},
    {ViewerBiz3::CAM_Z_DOWN_SIZE, "", Access::HostSettable},
    {ViewerBiz3::CAM_ACQ_LIMIT, "", Access::HostSettable},
    {ViewerBiz3::CAM_OFFSET_Y, "", Access::Writable},
    {ViewerBiz3::CAM_TEXT59, "", Access::Writable},
    {ViewerBiz3::CAM_TEXT60, "", Access::Writable},
    {ViewerBiz3::CAM_TEXT61, "", Access::Writable},
    {ViewerBiz3::CAM_CL_PROTOCOL, "", Access::Writable},
    {ViewerBiz3::CAM_CL_SERIAL_PORT, "", Access::Writable},
    {ViewerBiz3::CAM_TEXT67, "0", Access::HostSettable},
    {ViewerBiz3::CAM_TEXT68, "3199", Access::HostSettable},
};

// Alternative numbers that read another number's text and cannot be written.
const std::pair<CAM_INFO, CAM_INFO> aliases[] = {
    {ViewerBiz3::CAM_MODEL_NAME_ALT, ViewerBiz3::CAM_MODEL_NAME},
    {ViewerBiz3::CAM_DEVICE_TEXT_ALT, ViewerBiz3::CAM_DEVICE_TEXT},
    {ViewerBiz3::CAM_SERIAL_ALT, ViewerBiz3::CAM_SERIAL},
};

const TextField* FieldOf(CAM_INFO info)
{
    for (const TextField& field : textFields) {
        if (field.info == info)
            return &field;
    }
    return nullptr;
}

const char* const placeholderText = "NA";
} // namespace

CameraInfoTable::CameraInfoTable()
{
    for (const TextField& field : textFields)
        m_texts[field.info] = field.initial;
}

std::size_t CameraInfoTable::SlotOf(CAM_INFO info)
{
    for (const auto& alias : aliases) {
        if (alias.first == info)
            return alias.second;
    }
    return static_cast<std::size_t>(info);
}

bool CameraInfoTable::IsText(CAM_INFO info)
{
    return FieldOf(static_cast<CAM_INFO>(SlotOf(info))) != nullptr;
}

bool CameraInfoTable::IsHostSettable(CAM_INFO info)
{
    const TextField* field = FieldOf(info);
    return field && field->access == Access::HostSettable;
}

bool CameraInfoTable::IsWritable(CAM_INFO info)
{
    const TextField* field = FieldOf(info);
    return field && field->access != Access::Internal;
}

std::string CameraInfoTable::Get(CAM_INFO info) const
{
    if (!IsText(info))
        return std::string();
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_texts[SlotOf(info)];
}

bool CameraInfoTable::Put(CAM_INFO info, const std::string& text)
{
    if (!FieldOf(info))
        return false;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_texts[info] = text;
    return true;
}

void CameraInfoTable::ResetHostTexts()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (CAM_INFO info : {ViewerBiz3::CAM_HOST_TEXT40, ViewerBiz3::CAM_HOST_TEXT41, ViewerBiz3::CAM_HOST_TEXT42,
                          ViewerBiz3::CAM_HOST_TEXT43})
        m_texts[info] = FieldOf(info)->initial;
}

std::string CameraInfoTable::BecomePlaceholder(const std::string& prefix)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const std::string name = prefix + m_texts[VIRTUAL_SUFFIX];
    m_texts[ViewerBiz3::CAM_NAME] = name;
    for (CAM_INFO info :
         {ViewerBiz3::CAM_MODEL_NAME, ViewerBiz3::CAM_DEVICE_TEXT, ViewerBiz3::CAM_DEVICE_TEXT2, ViewerBiz3::CAM_SERIAL,
          ViewerBiz3::CAM_TEXT61, ViewerBiz3::CAM_CL_PROTOCOL, ViewerBiz3::CAM_CL_SERIAL_PORT})
        m_texts[info] = placeholderText;
    m_texts[ViewerBiz3::CAM_TEXT59] = "1";
    m_texts[ViewerBiz3::CAM_TEXT60] = "0";
    m_texts[KEY] = name;
    return name;
}

std::string CameraInfoTable::Get(Unnumbered slot) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_texts[slot];
}

void CameraInfoTable::Put(Unnumbered slot, const std::string& text)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_texts[slot] = text;
}
