#include "support/common/GvcpResponderOnVeth.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <future>

namespace {

constexpr uint16_t kGvcpPort = 3956;
constexpr uint16_t kDiscoveryCommand = 0x0002;
constexpr uint16_t kForceIpCommand = 0x0004;
constexpr std::size_t kDiscoveryBlockSize = 0xf8;
constexpr std::size_t kForceIpPayloadSize = 56;

bool Run(const std::string& command)
{
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

uint16_t Read16(const uint8_t* in)
{
    return uint16_t((in[0] << 8) | in[1]);
}

void Write32(uint8_t* out, uint32_t value)
{
    uint32_t network = htonl(value);
    std::memcpy(out, &network, 4);
}

uint32_t AddressValue(const std::string& text)
{
    in_addr address{};
    inet_pton(AF_INET, text.c_str(), &address);
    return ntohl(address.s_addr);
}

std::string AddressAt(const uint8_t* in)
{
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, in, text, sizeof text);
    return text;
}

std::vector<uint8_t> Acknowledge(uint16_t code, uint16_t length, uint16_t requestId)
{
    std::vector<uint8_t> packet(8 + length, 0);
    packet[2] = uint8_t(code >> 8);
    packet[3] = uint8_t(code);
    packet[4] = uint8_t(length >> 8);
    packet[5] = uint8_t(length);
    packet[6] = uint8_t(requestId >> 8);
    packet[7] = uint8_t(requestId);
    return packet;
}

void Broadcast(int fd, const std::vector<uint8_t>& packet, uint16_t port)
{
    sockaddr_in everyone{};
    everyone.sin_family = AF_INET;
    everyone.sin_port = htons(port);
    everyone.sin_addr.s_addr = htonl(INADDR_BROADCAST);
    sendto(fd, packet.data(), packet.size(), 0, reinterpret_cast<sockaddr*>(&everyone), sizeof everyone);
}

// What a careless or hostile device might send before its real answer.
void BroadcastGarbage(int fd, uint16_t code, uint16_t requestId, uint16_t port)
{
    Broadcast(fd, {0x00, 0x00, 0x00}, port);
    Broadcast(fd, Acknowledge(code, 0, uint16_t(requestId + 1)), port);
    std::vector<uint8_t> overlong = Acknowledge(code, 4, requestId);
    overlong[4] = 0xff; // claims far more payload than the packet holds
    overlong.resize(10);
    Broadcast(fd, overlong, port);
}

} // namespace

GvcpResponderOnVeth::GvcpResponderOnVeth(Identity identity, bool acknowledgesForceIp)
    : m_identity(std::move(identity)), m_acknowledgesForceIp(acknowledgesForceIp)
{
}

GvcpResponderOnVeth::~GvcpResponderOnVeth()
{
    m_stop.store(true);
    if (m_thread.joinable())
        m_thread.join();
    Run("ip link del vb3f0");
}

bool GvcpResponderOnVeth::Start(std::string& failure)
{
    m_cameraSpace = std::make_unique<NetworkNamespace>(std::vector<NetworkNamespace::Veth>{});
    if (!m_cameraSpace->IsReady()) {
        failure = m_cameraSpace->Failure();
        return false;
    }
    if (!m_cameraSpace->LinkFromCaller("vb3f0", "192.168.77.1/24", "vb3f1", m_identity.ip + "/24") ||
        !m_cameraSpace->Ip("route add default dev vb3f1")) {
        failure = "cannot build the veth link to the responder's namespace";
        return false;
    }
    std::promise<bool> listening;
    std::future<bool> started = listening.get_future();
    m_thread = std::thread([this, &listening] {
        int fd = m_cameraSpace->Enter() ? socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0) : -1;
        int on = 1;
        sockaddr_in any{};
        any.sin_family = AF_INET;
        any.sin_port = htons(kGvcpPort);
        bool bound = fd >= 0 && setsockopt(fd, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) == 0 &&
                     bind(fd, reinterpret_cast<sockaddr*>(&any), sizeof any) == 0;
        listening.set_value(bound);
        if (bound)
            Serve(fd);
        if (fd >= 0)
            close(fd);
    });
    if (!started.get()) {
        failure = "the responder could not listen in its namespace";
        return false;
    }
    return true;
}

std::vector<GvcpResponderOnVeth::ForceIp> GvcpResponderOnVeth::ForceIpCommands() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_forceIps;
}

void GvcpResponderOnVeth::Serve(int fd)
{
    while (!m_stop.load()) {
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
}

void GvcpResponderOnVeth::Answer(int fd, const uint8_t* packet, std::size_t size, uint16_t port)
{
    uint16_t code = Read16(packet + 2);
    uint16_t requestId = Read16(packet + 6);
    std::lock_guard<std::mutex> lock(m_mutex);
    if (code == kDiscoveryCommand) {
        BroadcastGarbage(fd, code + 1, requestId, port);
        std::vector<uint8_t> ack = Acknowledge(code + 1, kDiscoveryBlockSize, requestId);
        uint8_t* block = ack.data() + 8;
        std::memcpy(block + 0x0a, m_identity.mac, 6);
        Write32(block + 0x24, AddressValue(m_identity.ip));
        Write32(block + 0x34, AddressValue(m_identity.mask));
        Write32(block + 0x44, AddressValue(m_identity.gateway));
        std::strncpy(reinterpret_cast<char*>(block + 0x48), "VB3 Tests", 32);
        std::strncpy(reinterpret_cast<char*>(block + 0x68), m_identity.model.c_str(), 32);
        std::strncpy(reinterpret_cast<char*>(block + 0xd8), m_identity.serialNumber.c_str(), 16);
        std::strncpy(reinterpret_cast<char*>(block + 0xe8), m_identity.userDefinedName.c_str(), 16);
        Broadcast(fd, ack, port);
    } else if (code == kForceIpCommand && size >= 8 + kForceIpPayloadSize) {
        const uint8_t* payload = packet + 8;
        ForceIp command{packet[1],
                        code,
                        Read16(packet + 4),
                        {},
                        AddressAt(payload + 20),
                        AddressAt(payload + 36),
                        AddressAt(payload + 52)};
        std::memcpy(command.mac, payload + 2, 6);
        m_forceIps.push_back(command);
        if (!m_acknowledgesForceIp || std::memcmp(command.mac, m_identity.mac, 6) != 0)
            return;
        m_identity.ip = command.ip;
        m_identity.mask = command.mask;
        m_identity.gateway = command.gateway;
        BroadcastGarbage(fd, code + 1, requestId, port);
        Broadcast(fd, Acknowledge(code + 1, 0, requestId), port);
    }
}
