#include "sdk/aravis/GvcpBootstrapReader.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <optional>
#include <vector>

namespace ZYLGENICAM {

namespace {

constexpr uint8_t kCommandKey = 0x42;
constexpr uint8_t kAcknowledgeRequired = 0x01;
constexpr uint16_t kStatusSuccess = 0x0000;
constexpr uint16_t kReadRegisterCommand = 0x0080;
constexpr uint16_t kReadRegisterAck = 0x0081;
constexpr uint16_t kReadMemoryCommand = 0x0084;
constexpr uint16_t kReadMemoryAck = 0x0085;
constexpr uint32_t kSubnetMaskRegister = 0x0034;
constexpr uint32_t kGatewayRegister = 0x0044;
// Device version (0x88, 32 bytes) up to the end of the user-defined name (0xe8, 16 bytes).
constexpr uint32_t kDeviceVersionRegister = 0x0088;
constexpr uint16_t kDeviceVersionLength = 32;
constexpr uint32_t kUserDefinedNameOffset = 0x00e8 - kDeviceVersionRegister;
constexpr uint16_t kUserDefinedNameLength = 16;
constexpr uint16_t kIdentityBlockLength = kUserDefinedNameOffset + kUserDefinedNameLength;
constexpr uint32_t kControlChannelPrivilegeRegister = 0x0a00;
constexpr uint32_t kVersionRegister = 0x0000;

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

uint16_t Get16(const uint8_t* in) { return uint16_t((in[0] << 8) | in[1]); }
uint32_t Get32(const uint8_t* in) { return (uint32_t(Get16(in)) << 16) | Get16(in + 2); }

std::string AddressText(uint32_t hostOrder)
{
    in_addr address {};
    address.s_addr = htonl(hostOrder);
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

std::vector<uint8_t> RegisterRequest(uint32_t address)
{
    std::vector<uint8_t> request;
    Put32(request, address);
    return request;
}

struct GvcpAcknowledge {
    uint16_t status;
    std::vector<uint8_t> payload;
};

class GvcpSocket {
public:
    explicit GvcpSocket(const std::string& deviceAddress)
    {
        sockaddr_in device {};
        device.sin_family = AF_INET;
        device.sin_port = htons(GvcpBootstrapReader::kGvcpPort);
        if (inet_pton(AF_INET, deviceAddress.c_str(), &device.sin_addr) != 1)
            return;
        m_fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        if (m_fd >= 0 && connect(m_fd, reinterpret_cast<sockaddr*>(&device), sizeof device) != 0) {
            close(m_fd);
            m_fd = -1;
        }
    }
    ~GvcpSocket()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    GvcpSocket(const GvcpSocket&) = delete;
    GvcpSocket& operator=(const GvcpSocket&) = delete;

    bool IsOpen() const { return m_fd >= 0; }

    std::string LocalAddress() const
    {
        sockaddr_in local {};
        socklen_t length = sizeof local;
        if (getsockname(m_fd, reinterpret_cast<sockaddr*>(&local), &length) != 0)
            return "";
        return AddressText(ntohl(local.sin_addr.s_addr));
    }

    // Reads one 32-bit register; false when the device did not answer or refused.
    bool ReadRegister(uint32_t address, uint32_t& value)
    {
        std::optional<GvcpAcknowledge> reply = Transact(kReadRegisterCommand, kReadRegisterAck, RegisterRequest(address));
        if (!reply || reply->status != kStatusSuccess || reply->payload.size() < 4)
            return false;
        value = Get32(reply->payload.data());
        return true;
    }

    // Sends a command and waits for its acknowledge; nothing when none came in time.
    std::optional<GvcpAcknowledge> Transact(uint16_t command, uint16_t answer, const std::vector<uint8_t>& payload)
    {
        uint16_t requestId = ++m_requestId;
        std::vector<uint8_t> packet { kCommandKey, kAcknowledgeRequired };
        Put16(packet, command);
        Put16(packet, uint16_t(payload.size()));
        Put16(packet, requestId);
        packet.insert(packet.end(), payload.begin(), payload.end());
        for (int attempt = 0; attempt < GvcpBootstrapReader::kAttempts; ++attempt) {
            if (send(m_fd, packet.data(), packet.size(), 0) < 0)
                return std::nullopt;
            pollfd waiting { m_fd, POLLIN, 0 };
            while (poll(&waiting, 1, GvcpBootstrapReader::kReplyTimeoutMs) > 0) {
                uint8_t reply[1024];
                ssize_t size = recv(m_fd, reply, sizeof reply, 0);
                if (size < 8)
                    break;
                if (Get16(reply + 2) == answer && Get16(reply + 6) == requestId)
                    return GvcpAcknowledge { Get16(reply), std::vector<uint8_t>(reply + 8, reply + size) };
            }
        }
        return std::nullopt;
    }

private:
    int m_fd = -1;
    uint16_t m_requestId = 0;
};

} // namespace

// Some devices answer only one register per read command, so each is asked on its own.
bool GvcpBootstrapReader::Read(const std::string& deviceAddress, GigeBootstrapInfo& info)
{
    GvcpSocket gvcp(deviceAddress);
    if (!gvcp.IsOpen())
        return false;
    uint32_t values[3] = {};
    const uint32_t addresses[3] = { kSubnetMaskRegister, kGatewayRegister, kControlChannelPrivilegeRegister };
    for (int i = 0; i < 3; ++i) {
        if (!gvcp.ReadRegister(addresses[i], values[i]))
            return false;
    }
    info.subnetMask = AddressText(values[0]);
    info.gateway = AddressText(values[1]);
    info.controlled = values[2] != 0;
    info.hostInterfaceAddress = gvcp.LocalAddress();

    std::vector<uint8_t> memoryRequest;
    Put32(memoryRequest, kDeviceVersionRegister);
    Put16(memoryRequest, 0);
    Put16(memoryRequest, kIdentityBlockLength);
    std::optional<GvcpAcknowledge> memory = gvcp.Transact(kReadMemoryCommand, kReadMemoryAck, memoryRequest);
    if (memory && memory->status == kStatusSuccess && memory->payload.size() >= 4u + kIdentityBlockLength) {
        const char* block = reinterpret_cast<const char*>(memory->payload.data() + 4);
        info.deviceVersion.assign(block, strnlen(block, kDeviceVersionLength));
        const char* name = block + kUserDefinedNameOffset;
        info.userDefinedName.assign(name, strnlen(name, kUserDefinedNameLength));
    }
    return true;
}

bool GvcpBootstrapReader::Answers(const std::string& deviceAddress)
{
    // Any acknowledge proves the device alive, a refusal too (a device held exclusively by this
    // host refuses reads from other sockets).
    GvcpSocket gvcp(deviceAddress);
    return gvcp.IsOpen() && gvcp.Transact(kReadRegisterCommand, kReadRegisterAck, RegisterRequest(kVersionRegister));
}

} // namespace ZYLGENICAM
