#include "sdk/aravis/GvcpDiscovery.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <set>

#include "ZylSdk.h"
#include "sdk/aravis/GvcpBootstrapReader.h"
#include "sdk/aravis/UdpSocket.h"

namespace ZYLGENICAM {

namespace {

using Clock = std::chrono::steady_clock;

uint16_t NextRequestId()
{
    static std::atomic<uint16_t> counter{0};
    uint16_t id = ++counter;
    return id != 0 ? id : ++counter; // 0 is not a valid request id
}

std::vector<GigeAdapter> ListAdapters()
{
    std::vector<GigeAdapter> adapters;
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0)
        return adapters;
    for (ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_netmask == nullptr || entry->ifa_addr->sa_family != AF_INET ||
            (entry->ifa_flags & IFF_UP) == 0)
            continue;
        GigeAdapter adapter;
        adapter.index = if_nametoindex(entry->ifa_name);
        adapter.address = ntohl(reinterpret_cast<sockaddr_in*>(entry->ifa_addr)->sin_addr.s_addr);
        adapter.mask = ntohl(reinterpret_cast<sockaddr_in*>(entry->ifa_netmask)->sin_addr.s_addr);
        if (adapter.index != 0)
            adapters.push_back(adapter);
    }
    freeifaddrs(list);
    return adapters;
}

// One socket for every adapter: each broadcast names its way out (interface and source address),
// and each answer, unicast or broadcast, tells the interface it came in on.
class BroadcastSocket {
public:
    BroadcastSocket()
    {
        int on = 1;
        sockaddr_in any{};
        any.sin_family = AF_INET;
        if (!m_socket.IsOpen() || setsockopt(m_socket.Fd(), SOL_SOCKET, SO_BROADCAST, &on, sizeof on) != 0 ||
            setsockopt(m_socket.Fd(), IPPROTO_IP, IP_PKTINFO, &on, sizeof on) != 0 ||
            bind(m_socket.Fd(), reinterpret_cast<sockaddr*>(&any), sizeof any) != 0)
            m_socket.Close();
    }

    bool IsOpen() const { return m_socket.IsOpen(); }

    bool SendFrom(const GigeAdapter& adapter, const std::vector<uint8_t>& packet)
    {
        sockaddr_in everyone{};
        everyone.sin_family = AF_INET;
        everyone.sin_port = htons(Gvcp::kPort);
        everyone.sin_addr.s_addr = htonl(INADDR_BROADCAST);
        iovec data{const_cast<uint8_t*>(packet.data()), packet.size()};
        alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
        msghdr message{};
        message.msg_name = &everyone;
        message.msg_namelen = sizeof everyone;
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr* header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = IPPROTO_IP;
        header->cmsg_type = IP_PKTINFO;
        header->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
        in_pktinfo way{};
        way.ipi_ifindex = int(adapter.index);
        way.ipi_spec_dst.s_addr = htonl(adapter.address);
        std::memcpy(CMSG_DATA(header), &way, sizeof way);
        return sendmsg(m_socket.Fd(), &message, 0) == ssize_t(packet.size());
    }

    // Waits for the next packet until the deadline; false when none came.
    bool Receive(Clock::time_point deadline, std::vector<uint8_t>& packet, unsigned& interfaceIndex)
    {
        for (;;) {
            auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            pollfd waiting{m_socket.Fd(), POLLIN, 0};
            if (left <= 0 || poll(&waiting, 1, int(left)) <= 0)
                return false;
            packet.resize(1500);
            iovec data{packet.data(), packet.size()};
            alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
            msghdr message{};
            message.msg_iov = &data;
            message.msg_iovlen = 1;
            message.msg_control = control;
            message.msg_controllen = sizeof control;
            ssize_t size = recvmsg(m_socket.Fd(), &message, 0);
            if (size < 0)
                continue;
            packet.resize(std::size_t(size));
            interfaceIndex = 0;
            for (cmsghdr* header = CMSG_FIRSTHDR(&message); header != nullptr; header = CMSG_NXTHDR(&message, header)) {
                if (header->cmsg_level == IPPROTO_IP && header->cmsg_type == IP_PKTINFO) {
                    in_pktinfo way{};
                    std::memcpy(&way, CMSG_DATA(header), sizeof way);
                    interfaceIndex = unsigned(way.ipi_ifindex);
                }
            }
            return true;
        }
    }

private:
    UdpSocket m_socket;
};

const GigeAdapter* AdapterOfInterface(const std::vector<GigeAdapter>& adapters, unsigned index)
{
    for (const GigeAdapter& adapter : adapters)
        if (adapter.index == index)
            return &adapter;
    return nullptr;
}

} // namespace

bool DiscoveredGigeDevice::ReachableByUnicast() const
{
    return (data.ip & adapter.mask) == (adapter.address & adapter.mask);
}

namespace GvcpDiscovery {

std::vector<DiscoveredGigeDevice> Discover()
{
    std::vector<DiscoveredGigeDevice> found;
    std::vector<GigeAdapter> adapters = ListAdapters();
    BroadcastSocket socket;
    if (!socket.IsOpen() || adapters.empty())
        return found;
    uint16_t requestId = NextRequestId();
    std::vector<uint8_t> command = Gvcp::Command(Gvcp::DISCOVERY_CMD, requestId, {},
                                                 Gvcp::kAcknowledgeRequired | Gvcp::kAllowBroadcastAcknowledge);
    for (const GigeAdapter& adapter : adapters)
        socket.SendFrom(adapter, command);
    std::set<Gvcp::MacAddress> seen;
    Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(kDiscoveryWindowMs);
    std::vector<uint8_t> packet;
    unsigned interfaceIndex = 0;
    while (socket.Receive(deadline, packet, interfaceIndex)) {
        const GigeAdapter* adapter = AdapterOfInterface(adapters, interfaceIndex);
        auto ack = Gvcp::ParseAcknowledge(packet.data(), packet.size(), Gvcp::DISCOVERY_ACK, requestId);
        if (adapter == nullptr || !ack || ack->status != Gvcp::kStatusSuccess)
            continue;
        std::optional<Gvcp::DiscoveryData> data = Gvcp::ParseDiscoveryData(ack->payload);
        if (data && seen.insert(data->mac).second)
            found.push_back(DiscoveredGigeDevice{*data, *adapter});
    }
    return found;
}

std::optional<DiscoveredGigeDevice> FindBySerialNumber(const std::string& serialNumber)
{
    for (DiscoveredGigeDevice& device : Discover())
        if (device.data.serialNumber == serialNumber)
            return device;
    return std::nullopt;
}

int ForceIp(const DiscoveredGigeDevice& device, uint32_t ip, uint32_t mask, uint32_t gateway)
{
    BroadcastSocket socket;
    if (!socket.IsOpen())
        return SDK_ERROR;
    uint16_t requestId = NextRequestId();
    std::vector<uint8_t> command =
        Gvcp::Command(Gvcp::FORCEIP_CMD, requestId, Gvcp::ForceIpPayload(device.data.mac, ip, mask, gateway));
    std::vector<uint8_t> packet;
    unsigned interfaceIndex = 0;
    for (int attempt = 0; attempt < GvcpBootstrapReader::kAttempts; ++attempt) {
        if (!socket.SendFrom(device.adapter, command))
            return SDK_ERROR;
        Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(GvcpBootstrapReader::kReplyTimeoutMs);
        while (socket.Receive(deadline, packet, interfaceIndex)) {
            auto ack = Gvcp::ParseAcknowledge(packet.data(), packet.size(), Gvcp::FORCEIP_ACK, requestId);
            if (ack)
                return ack->status == Gvcp::kStatusSuccess ? SDK_OK : SDK_ERROR;
        }
    }
    return SDK_TIMEOUT;
}

} // namespace GvcpDiscovery
} // namespace ZYLGENICAM
