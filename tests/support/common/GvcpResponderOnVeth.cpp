#include "support/common/GvcpResponderOnVeth.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

#include "support/common/WaitUntil.h"

namespace {

constexpr uint16_t kDiscoveryCommand = 0x0002;
constexpr uint16_t kForceIpCommand = 0x0004;
constexpr std::size_t kForceIpPayloadSize = 56;
const uint8_t kMac[6] = {0x02, 0x00, 0x00, 0x77, 0x00, 0x05};

uint16_t Read16(const uint8_t* in)
{
    return uint16_t((in[0] << 8) | in[1]);
}

std::string AddressAt(const uint8_t* in)
{
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, in, text, sizeof text);
    return text;
}

std::vector<uint8_t> Acknowledge(uint16_t code, uint16_t length, uint16_t requestId)
{
    std::vector<uint8_t> packet{0, 0};
    for (uint16_t field : {code, length, requestId})
        packet.insert(packet.end(), {uint8_t(field >> 8), uint8_t(field)});
    return packet;
}

void Broadcast(int fd, const std::vector<uint8_t>& packet, uint16_t port)
{
    sockaddr_in everyone{AF_INET, htons(port), {htonl(INADDR_BROADCAST)}, {}};
    sendto(fd, packet.data(), packet.size(), 0, reinterpret_cast<sockaddr*>(&everyone), sizeof everyone);
}

// What a careless or hostile device might send before its real answer.
void BroadcastGarbage(int fd, uint16_t code, uint16_t requestId, uint16_t port)
{
    Broadcast(fd, {0x00, 0x00, 0x00}, port);
    Broadcast(fd, Acknowledge(code, 0, uint16_t(requestId + 1)), port);
    std::vector<uint8_t> overlong = Acknowledge(code, 0xff04, requestId);
    overlong.resize(10);
    Broadcast(fd, overlong, port);
}

} // namespace

GvcpResponderOnVeth::~GvcpResponderOnVeth()
{
    m_stop.store(true);
    if (m_thread.joinable())
        m_thread.join();
}

bool GvcpResponderOnVeth::Start(std::string& failure)
{
    if (!m_cameraSpace.LinkFromCaller("vb3f0", "192.168.77.1/24", "vb3f1", m_ip + "/24") ||
        !m_cameraSpace.Ip("route add default dev vb3f1")) {
        failure = "cannot build the veth link to the responder's namespace " + m_cameraSpace.Failure();
        return false;
    }
    m_thread = std::thread([this] { Serve(); });
    if (WaitUntil([&] { return m_listening.load(); }))
        return true;
    failure = "the responder could not listen in its namespace";
    return false;
}

int GvcpResponderOnVeth::ForceIpCommands() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_forceIpCommands;
}

void GvcpResponderOnVeth::Serve()
{
    // The thread moves into the responder's namespace, so its socket is made there.
    const int fd = m_cameraSpace.Enter() ? socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0) : -1;
    const int on = 1;
    sockaddr_in any{AF_INET, htons(3956), {}, {}};
    m_listening = fd >= 0 && setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) == 0 &&
                  bind(fd, reinterpret_cast<sockaddr*>(&any), sizeof any) == 0;
    while (m_listening && !m_stop.load()) {
        pollfd waiting{fd, POLLIN, 0};
        if (poll(&waiting, 1, 50) <= 0)
            continue;
        uint8_t packet[1500];
        sockaddr_in sender{};
        socklen_t senderLength = sizeof sender;
        ssize_t size = recvfrom(fd, packet, sizeof packet, 0, reinterpret_cast<sockaddr*>(&sender), &senderLength);
        if (size >= 8 && packet[0] == 0x42)
            Answer(fd, packet, std::size_t(size), ntohs(sender.sin_port));
    }
    close(fd);
}

void GvcpResponderOnVeth::Answer(int fd, const uint8_t* packet, std::size_t size, uint16_t port)
{
    uint16_t code = Read16(packet + 2);
    uint16_t requestId = Read16(packet + 6);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (code == kDiscoveryCommand) {
        BroadcastGarbage(fd, code + 1, requestId, port);
        std::vector<uint8_t> ack = Acknowledge(code + 1, 0xf8, requestId);
        ack.resize(8 + 0xf8);
        uint8_t* block = ack.data() + 8;
        std::memcpy(block + 0x0a, kMac, 6);
        inet_pton(AF_INET, m_ip.c_str(), block + 0x24);
        inet_pton(AF_INET, m_mask.c_str(), block + 0x34);
        inet_pton(AF_INET, m_gateway.c_str(), block + 0x44);
        std::strcpy(reinterpret_cast<char*>(block + 0x48), "VB3 Tests");
        std::strcpy(reinterpret_cast<char*>(block + 0x68), "Responder");
        std::strcpy(reinterpret_cast<char*>(block + 0xd8), "VB3FAR");
        std::strcpy(reinterpret_cast<char*>(block + 0xe8), "Far");
        Broadcast(fd, ack, port);
    } else if (code == kForceIpCommand && Read16(packet + 4) == kForceIpPayloadSize &&
               size >= 8 + kForceIpPayloadSize) {
        const uint8_t* payload = packet + 8;
        ++m_forceIpCommands;
        // Only a command for our MAC that asks for an acknowledge (flag 0x01) gets one.
        if (!m_acknowledgesForceIp || (packet[1] & 0x01) == 0 || std::memcmp(payload + 2, kMac, 6) != 0)
            return;
        m_ip = AddressAt(payload + 20);
        m_mask = AddressAt(payload + 36);
        m_gateway = AddressAt(payload + 52);
        BroadcastGarbage(fd, code + 1, requestId, port);
        Broadcast(fd, Acknowledge(code + 1, 0, requestId), port);
    }
}
