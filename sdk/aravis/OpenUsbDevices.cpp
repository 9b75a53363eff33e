#include "sdk/aravis/OpenUsbDevices.h"

#include <cstring>

namespace ZYLGENICAM {

namespace {

// The user-defined name in a USB3 Vision device's technology-agnostic bootstrap registers.
constexpr guint64 kUserDefinedNameRegister = 0x0184;
constexpr std::size_t kUserDefinedNameLength = 64;

} // namespace

OpenUsbDevices& OpenUsbDevices::Instance()
{
    static OpenUsbDevices devices;
    return devices;
}

void OpenUsbDevices::Add(const std::string& aravisDeviceId, ArvDevice* device)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_devices[aravisDeviceId] = RefObject(device);
}

void OpenUsbDevices::Remove(const std::string& aravisDeviceId)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_devices.erase(aravisDeviceId);
}

bool OpenUsbDevices::ReadUserDefinedName(const std::string& aravisDeviceId, std::string& name)
{
    GObjectPtr<ArvDevice> device;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        auto found = m_devices.find(aravisDeviceId);
        if (found == m_devices.end())
            return false;
        device = RefObject(found->second.get());
    }
    char text[kUserDefinedNameLength + 1] = {};
    GError* error = nullptr;
    bool read = arv_device_read_memory(device.get(), kUserDefinedNameRegister, kUserDefinedNameLength, text, &error);
    g_clear_error(&error);
    name = read ? std::string(text, strnlen(text, kUserDefinedNameLength)) : std::string();
    return true;
}

} // namespace ZYLGENICAM
