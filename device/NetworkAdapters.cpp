#include "device/NetworkAdapters.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sstream>

#ifdef __linux__
#include <netpacket/packet.h>
#endif

#include "device/Card.h"
#include "device/DeviceManager.h"

namespace {

constexpr int LINK_LEVEL_FAMILY =
#ifdef __linux__
    AF_PACKET;
#else
    AF_LINK;
#endif

// An IPv4 socket closed when it goes out of scope.
class Ipv4Socket {
public:
    Ipv4Socket() : m_fd(socket(AF_INET, SOCK_DGRAM, 0)) {}
    ~Ipv4Socket()
    {
        if (m_fd >= 0)
            close(m_fd);
    }
    Ipv4Socket(const Ipv4Socket&) = delete;
    Ipv4Socket& operator=(const Ipv4Socket&) = delete;
    bool IsOpen() const { return m_fd >= 0; }
    bool Query(unsigned long request, ifreq& query) const { return ioctl(m_fd, request, &query) == 0; }

private:
    int m_fd;
};

ifreq RequestFor(const char* interfaceName)
{
    ifreq query{};
    std::strncpy(query.ifr_name, interfaceName, IFNAMSIZ - 1);
    return query;
}

// The address of an address-type answer as a 32-bit value in network order, 0 on failure.
uint32_t QueryIpv4(const Ipv4Socket& socket, const char* interfaceName, unsigned long request)
{
    ifreq query = RequestFor(interfaceName);
    if (!socket.Query(request, query))
        return 0;
    in_addr address = reinterpret_cast<sockaddr_in*>(&query.ifr_addr)->sin_addr;
    return inet_addr(inet_ntoa(address));
}

bool IsBroadcastUpAndRunning(const Ipv4Socket& socket, const char* interfaceName)
{
    ifreq query = RequestFor(interfaceName);
    if (!socket.Query(SIOCGIFFLAGS, query))
        return false;
    const int wanted = IFF_BROADCAST | IFF_UP | IFF_RUNNING;
    return (query.ifr_flags & wanted) == wanted;
}

// A piece of a dotted text as a number: text that is no number reads as 0.
unsigned long PieceValue(const std::string& piece)
{
    char* end = nullptr;
    unsigned long value = std::strtoul(piece.c_str(), &end, 10);
    return end == piece.c_str() ? 0 : value;
}

bool IsContiguousMask(const std::vector<std::string>& maskPieces)
{
    bool expected = true;
    bool first = true;
    for (const std::string& piece : maskPieces) {
        unsigned long byte = PieceValue(piece) & 0xFF;
        for (int bit = 7; bit >= 0; --bit) {
            bool set = ((byte >> bit) & 1) != 0;
            if (first) {
                expected = set;
                first = false;
            } else if (expected && !set) {
                expected = false;
            } else if (!expected && set) {
                return false;
            }
        }
    }
    return true;
}

std::unique_ptr<Card> MakeAdapterCard(const std::string& interfaceName, const std::string& address,
                                      const std::string& mask)
{
    auto card = std::make_unique<Card>();
    card->SetType(Card::NETWORK_ADAPTER);
    card->SetFlag2(0);
    card->SetOpened(false);
    card->SetInUseCount(0);
    card->SetText(ViewerBiz3::CARD_INTERFACE_NAME, interfaceName);
    card->SetText(ViewerBiz3::CARD_IP, address);
    card->SetKey(interfaceName + "[" + address + "]");
    card->SetText(ViewerBiz3::CARD_GATEWAY, "0.0.0.0");
    card->SetText(ViewerBiz3::CARD_MASK, mask);
    card->SetText(ViewerBiz3::CARD_MAC, GetMACAddress(interfaceName.c_str()));
    return card;
}

} // namespace

std::string GetMACAddress(const char* interfaceName)
{
    if (interfaceName == nullptr)
        return "";
    ifaddrs* addresses = nullptr;
    if (getifaddrs(&addresses) != 0)
        return "";
    std::string text;
    for (ifaddrs* entry = addresses; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != LINK_LEVEL_FAMILY ||
            entry->ifa_name == nullptr || std::strcmp(entry->ifa_name, interfaceName) != 0)
            continue;
#ifdef __linux__
        const unsigned char* bytes = reinterpret_cast<const sockaddr_ll*>(entry->ifa_addr)->sll_addr;
#else
        const unsigned char* bytes =
            reinterpret_cast<const unsigned char*>(LLADDR(reinterpret_cast<const sockaddr_dl*>(entry->ifa_addr)));
#endif
        char buffer[20];
        std::snprintf(buffer, sizeof(buffer), "%02X:%02X:%02X:%02X:%02X:%02X", bytes[0], bytes[1], bytes[2], bytes[3],
                      bytes[4], bytes[5]);
        text = buffer;
        break;
    }
    freeifaddrs(addresses);
    return text;
}

std::string UlongToIPString(unsigned long value)
{
    std::string text;
    for (int byte = 0; byte < 4; ++byte) {
        if (byte > 0)
            text += '.';
        text += std::to_string((value >> (8 * byte)) & 0xFF);
    }
    return text;
}

bool isDstFormat(std::string& /*text*/, std::string /*format*/)
{
    return false;
}

std::unordered_map<std::string, Card*> DeviceManager::GetNetworkCards()
{
    std::unordered_map<std::string, Card*> adapters;
    struct if_nameindex* names = ::if_nameindex();
    if (names == nullptr)
        return adapters;
    for (struct if_nameindex* entry = names; entry->if_index != 0 && entry->if_name != nullptr; ++entry) {
        Ipv4Socket socket;
        if (!socket.IsOpen())
            continue;
        uint32_t address = QueryIpv4(socket, entry->if_name, SIOCGIFADDR);
        bool qualifies = IsBroadcastUpAndRunning(socket, entry->if_name);
        if (address == 0 || !qualifies)
            continue;
        uint32_t mask = QueryIpv4(socket, entry->if_name, SIOCGIFNETMASK);
        std::unique_ptr<Card> card = MakeAdapterCard(entry->if_name, UlongToIPString(address), UlongToIPString(mask));
        if (adapters.emplace(card->GetKey(), card.get()).second)
            card.release();
    }
    if_freenameindex(names);
    return adapters;
}

std::vector<std::string> DeviceManager::StringSplit(const std::string& text, char delimiter)
{
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    std::string piece;
    while (std::getline(stream, piece, delimiter))
        pieces.push_back(piece);
    return pieces;
}

bool DeviceManager::IsNetworkSameSegment(std::string ip1, std::string mask1, std::string ip2, std::string mask2)
{
    std::vector<std::string> ip1Pieces = StringSplit(ip1, '.');
    std::vector<std::string> mask1Pieces = StringSplit(mask1, '.');
    std::vector<std::string> ip2Pieces = StringSplit(ip2, '.');
    std::vector<std::string> mask2Pieces = StringSplit(mask2, '.');
    if (ip1Pieces.size() != 4 || mask1Pieces.size() != 4 || ip2Pieces.size() != 4 || mask2Pieces.size() != 4)
        return false;
    if (!IsContiguousMask(mask1Pieces))
        return false;
    // The host part (fourth piece) is never compared.
    for (std::size_t position = 0; position < 3; ++position) {
        if (ip1Pieces[position] != ip2Pieces[position] &&
            (mask1Pieces[position] != "0" || mask2Pieces[position] != "0"))
            return false;
    }
    return true;
}

std::string DeviceManager::GetNetworkSegment(std::string ip, std::string mask)
{
    std::vector<std::string> ipPieces = StringSplit(ip, '.');
    std::vector<std::string> maskPieces = StringSplit(mask, '.');
    if (ipPieces.size() != 4 || maskPieces.size() != 4)
        return "";
    std::string segment;
    for (std::size_t position = 0; position < 4; ++position) {
        if (position > 0)
            segment += '.';
        segment += std::to_string(PieceValue(ipPieces[position]) & PieceValue(maskPieces[position]) & 0xFF);
    }
    return segment;
}
