// Text helpers for host network adapters and dotted IPv4 addresses. The adapter
// table itself and the subnet test are DeviceManager members (DeviceManager.h),
// defined beside these in NetworkAdapters.cpp.
#pragma once

#include <string>

// "%02X:%02X:%02X:%02X:%02X:%02X" of the interface's link-level address, or empty.
std::string GetMACAddress(const char* interfaceName);
// The four least significant bytes, least significant first, as dotted text:
// an address in network byte order gives its usual form.
std::string UlongToIPString(unsigned long value);
// Kept for the interface: daylight-saving formats are never recognised.
bool isDstFormat(std::string& text, std::string format);
