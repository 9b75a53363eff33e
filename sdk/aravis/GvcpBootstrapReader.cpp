#include "sdk/aravis/GvcpBootstrapReader.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <optional>
#include <vector>

#include "sdk/aravis/BigEndian.h"
#include "sdk/aravis/GvcpPacket.h"
#include "sdk/aravis/UdpSocket.h"

namespace ZYLGENICAM {

namespace {

using namespace Gvcp;

constexpr uint32_t kControlChannelPrivilegeRegister = 0x0a00;
constexpr uint32_t kVersionRegister = 0x0000;

std::vector<uint8_t> RegisterRequest(uint32_t address)
{
    std::vector<uint8_t> request;
    Put32(request, address);
    return request;
}

class GvcpSocket {
public:
    explicit GvcpSocket(const std::string& deviceAddress)
    {
        sockaddr_in device{};
        device.sin_family = AF_INET;
        device.sin_port = htons(kPort);
        if (inet_pton(AF_INET, deviceAddress.c_str(), &device.sin_addr) != 1 || !m_socket.IsOpen() ||
            connect(m_socket.Fd(), reinterpret_cast<sockaddr*>(&device), sizeof device) != 0)
            m_socket.Close();
    }

    bool IsOpen() const { return m_socket.IsOpen(); }

    // Reads one 32-bit register; false when the device did not answer or refused.
    bool ReadRegister(uint32_t address, uint32_t& value)
    {
        std::optional<Acknowledge> reply = Transact(READREG_CMD, READREG_ACK, RegisterRequest(address));
        if (!reply || reply->status != kStatusSuccess || reply->payload.size() < 4)
            return false;
        value = ReadBigEndian32(reply->payload.data());
        return true;
    }

    // Sends a command and waits for its acknowledge; nothing when none came in time.
    std::optional<Acknowledge> Transact(uint16_t command, uint16_t answer, const std::vector<uint8_t>& payload)
    {
        uint16_t requestId = ++m_requestId;
        std::vector<uint8_t> packet = Command(command, requestId, payload);
        for (int attempt = 0; attempt < GvcpBootstrapReader::kAttempts; ++attempt) {
            if (send(m_socket.Fd(), packet.data(), packet.size(), 0) < 0)
                return std::nullopt;
            pollfd waiting{m_socket.Fd(), POLLIN, 0};
            while (poll(&waiting, 1, GvcpBootstrapReader::kReplyTimeoutMs) > 0) {
                uint8_t reply[1024];
                ssize_t size = recv(m_socket.Fd(), reply, sizeof reply, 0);
                if (size < 0)
                    break;
                if (auto ack = ParseAcknowledge(reply, std::size_t(size), answer, requestId))
                    return ack;
            }
        }
        return std::nullopt;
    }

private:
    UdpSocket m_socket;
    uint16_t m_requestId = 0;
};

} // namespace

bool GvcpBootstrapReader::ReadControlled(const std::string& deviceAddress, bool& controlled)
{
    GvcpSocket gvcp(deviceAddress);
    uint32_t privilege = 0;
    if (!gvcp.IsOpen() || !gvcp.ReadRegister(kControlChannelPrivilegeRegister, privilege))
        return false;
    controlled = privilege != 0;
    return true;
}

bool GvcpBootstrapReader::Answers(const std::string& deviceAddress)
{
    // Any acknowledge proves the device alive, a refusal too (a device held exclusively by this
    // host refuses reads from other sockets).
    GvcpSocket gvcp(deviceAddress);
    return gvcp.IsOpen() && gvcp.Transact(READREG_CMD, READREG_ACK, RegisterRequest(kVersionRegister));
}

} // namespace ZYLGENICAM
