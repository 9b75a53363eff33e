#include "sdk/aravis/GvcpPacket.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "sdk/aravis/BigEndian.h"

namespace ZYLGENICAM {
namespace Gvcp {

namespace {

constexpr uint8_t kCommandKey = 0x42;

// Offsets in the discovery block (the bootstrap registers from 0 to 0xf8).
constexpr std::size_t kMacHigh = 0x0a;
constexpr std::size_t kCurrentIpConfiguration = 0x14;
constexpr std::size_t kCurrentIp = 0x24;
constexpr std::size_t kCurrentMask = 0x34;
constexpr std::size_t kCurrentGateway = 0x44;
constexpr std::size_t kVendor = 0x48;
constexpr std::size_t kModel = 0x68;
constexpr std::size_t kDeviceVersion = 0x88;
constexpr std::size_t kManufacturerInfo = 0xa8;
constexpr std::size_t kSerialNumber = 0xd8;
constexpr std::size_t kUserDefinedName = 0xe8;
constexpr std::size_t kDiscoveryBlockSize = 0xf8;

// Offsets in the FORCEIP_CMD payload.
constexpr std::size_t kForceMacHigh = 2;
constexpr std::size_t kForceIp = 20;
constexpr std::size_t kForceMask = 36;
constexpr std::size_t kForceGateway = 52;

// A text field of the block: up to its first zero, never past its length.
std::string Field(const uint8_t* block, std::size_t offset, std::size_t length)
{
    const char* text = reinterpret_cast<const char*>(block + offset);
    return std::string(text, strnlen(text, length));
}

} // namespace

void Put16(std::vector<uint8_t>& out, uint16_t value)
{
    out.push_back(uint8_t(value >> 8));
    out.push_back(uint8_t(value));
}

void Put32(std::vector<uint8_t>& out, uint32_t value)
{
    Put16(out, uint16_t(value >> 16));
    Put16(out, uint16_t(value));
}

std::string AddressText(uint32_t hostOrder)
{
    in_addr address{};
    address.s_addr = htonl(hostOrder);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

bool ParseAddress(const std::string& text, uint32_t& hostOrder)
{
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1)
        return false;
    hostOrder = ntohl(address.s_addr);
    return true;
}

std::string MacText(const MacAddress& mac)
{
    char text[18];
    std::snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return text;
}

bool ParseMac(const std::string& text, MacAddress& mac)
{
    unsigned bytes[6];
    char extra = 0;
    if (std::sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%c", &bytes[0], &bytes[1], &bytes[2], &bytes[3], &bytes[4],
                    &bytes[5], &extra) != 6)
        return false;
    for (std::size_t i = 0; i < mac.size(); ++i)
        mac[i] = uint8_t(bytes[i]);
    return true;
}

std::vector<uint8_t> Command(uint16_t code, uint16_t requestId, const std::vector<uint8_t>& payload, uint8_t flags)
{
    std::vector<uint8_t> packet{kCommandKey, flags};
    Put16(packet, code);
    Put16(packet, uint16_t(payload.size()));
    Put16(packet, requestId);
    packet.insert(packet.end(), payload.begin(), payload.end());
    return packet;
}

std::optional<Acknowledge> ParseAcknowledge(const uint8_t* packet, std::size_t size, uint16_t code, uint16_t requestId)
{
    if (packet == nullptr || size < kHeaderSize)
        return std::nullopt;
    Acknowledge ack{ReadBigEndian16(packet), ReadBigEndian16(packet + 2), ReadBigEndian16(packet + 6), {}};
    if (ack.code != code || ack.requestId != requestId)
        return std::nullopt;
    std::size_t length = std::min<std::size_t>(ReadBigEndian16(packet + 4), size - kHeaderSize);
    ack.payload.assign(packet + kHeaderSize, packet + kHeaderSize + length);
    return ack;
}

std::optional<DiscoveryData> ParseDiscoveryData(const std::vector<uint8_t>& payload)
{
    if (payload.size() < kDiscoveryBlockSize)
        return std::nullopt;
    const uint8_t* block = payload.data();
    DiscoveryData data;
    std::memcpy(data.mac.data(), block + kMacHigh, data.mac.size());
    data.currentIpConfiguration = ReadBigEndian32(block + kCurrentIpConfiguration);
    data.ip = ReadBigEndian32(block + kCurrentIp);
    data.mask = ReadBigEndian32(block + kCurrentMask);
    data.gateway = ReadBigEndian32(block + kCurrentGateway);
    data.vendor = Field(block, kVendor, kModel - kVendor);
    data.model = Field(block, kModel, kDeviceVersion - kModel);
    data.deviceVersion = Field(block, kDeviceVersion, kManufacturerInfo - kDeviceVersion);
    data.manufacturerInfo = Field(block, kManufacturerInfo, kSerialNumber - kManufacturerInfo);
    data.serialNumber = Field(block, kSerialNumber, kUserDefinedName - kSerialNumber);
    data.userDefinedName = Field(block, kUserDefinedName, kDiscoveryBlockSize - kUserDefinedName);
    return data;
}

std::vector<uint8_t> ForceIpPayload(const MacAddress& mac, uint32_t ip, uint32_t mask, uint32_t gateway)
{
    std::vector<uint8_t> payload(kForceIpPayloadSize, 0);
    std::memcpy(payload.data() + kForceMacHigh, mac.data(), mac.size());
    WriteBigEndian32(payload.data() + kForceIp, ip);
    WriteBigEndian32(payload.data() + kForceMask, mask);
    WriteBigEndian32(payload.data() + kForceGateway, gateway);
    return payload;
}

} // namespace Gvcp
} // namespace ZYLGENICAM
