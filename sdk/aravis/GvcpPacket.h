// GigE Vision control protocol (GVCP) packets: building commands and reading what a device
// sends back. Every reader takes raw bytes from the network and checks each length first, so a
// short, truncated or foreign packet is refused, never read past its end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZYLGENICAM {
namespace Gvcp {

constexpr uint16_t kPort = 3956;
constexpr std::size_t kHeaderSize = 8;

// Header flags of a command.
constexpr uint8_t kAcknowledgeRequired = 0x01;
constexpr uint8_t kAllowBroadcastAcknowledge = 0x10; // discovery: a device off our subnet may broadcast

enum Code : uint16_t {
    DISCOVERY_CMD = 0x0002,
    DISCOVERY_ACK = 0x0003,
    FORCEIP_CMD = 0x0004,
    FORCEIP_ACK = 0x0005,
    READREG_CMD = 0x0080,
    READREG_ACK = 0x0081,
};

constexpr uint16_t kStatusSuccess = 0x0000;
constexpr std::size_t kForceIpPayloadSize = 56;

using MacAddress = std::array<uint8_t, 6>;

void Put16(std::vector<uint8_t>& out, uint16_t value);
void Put32(std::vector<uint8_t>& out, uint32_t value);

// Dotted IPv4 text of an address in host byte order, and back (false for anything else).
std::string AddressText(uint32_t hostOrder);
bool ParseAddress(const std::string& text, uint32_t& hostOrder);
// "XX:XX:XX:XX:XX:XX" (upper case), and back (either case).
std::string MacText(const MacAddress& mac);
bool ParseMac(const std::string& text, MacAddress& mac);

std::vector<uint8_t> Command(uint16_t code, uint16_t requestId, const std::vector<uint8_t>& payload,
                             uint8_t flags = kAcknowledgeRequired);

struct Acknowledge {
    uint16_t status = 0;
    uint16_t code = 0;
    uint16_t requestId = 0;
    std::vector<uint8_t> payload; // as long as the header says, never past the packet
};

// The acknowledge of the given code and request id, or nothing for any other packet.
std::optional<Acknowledge> ParseAcknowledge(const uint8_t* packet, std::size_t size, uint16_t code, uint16_t requestId);

// A device's identity as its discovery acknowledge states it (the first bootstrap block).
struct DiscoveryData {
    MacAddress mac{};
    uint32_t currentIpConfiguration = 0;
    uint32_t ip = 0;
    uint32_t mask = 0;
    uint32_t gateway = 0;
    std::string vendor;
    std::string model;
    std::string deviceVersion;
    std::string manufacturerInfo;
    std::string serialNumber;
    std::string userDefinedName;
};

// Nothing when the payload is shorter than the discovery block.
std::optional<DiscoveryData> ParseDiscoveryData(const std::vector<uint8_t>& payload);

// FORCEIP_CMD payload: the target's MAC address and the new address, mask and gateway.
std::vector<uint8_t> ForceIpPayload(const MacAddress& mac, uint32_t ip, uint32_t mask, uint32_t gateway);

} // namespace Gvcp
} // namespace ZYLGENICAM
