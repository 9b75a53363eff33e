#include "FakeGigeFleet.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/common/PrivateNetworkNamespace.h"

namespace Bench {

namespace {

// The fake camera listens only on an address some interface has; loopback answers for all of
// 127.0.0.0/8 but lists only 127.0.0.1, so each further address gets a label of its own ("lo:N").
bool AddLoopbackAddress(const std::string& address, int host, std::string& why)
{
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        why = "no socket for configuring loopback";
        return false;
    }
    ifreq request{};
    std::snprintf(request.ifr_name, IFNAMSIZ, "lo:%d", host);
    auto* inet = reinterpret_cast<sockaddr_in*>(&request.ifr_addr);
    inet->sin_family = AF_INET;
    inet_pton(AF_INET, address.c_str(), &inet->sin_addr);
    bool added = ioctl(fd, SIOCSIFADDR, &request) == 0 || errno == EEXIST;
    if (!added)
        why = "could not add " + address + " to loopback: " + std::strerror(errno);
    close(fd);
    return added;
}

} // namespace

FakeGigeFleet::FakeGigeFleet(int count, const std::string& serialPrefix, int firstHost)
{
    for (int i = 0; i < count; ++i) {
        char serial[32];
        std::snprintf(serial, sizeof serial, "%s%02d", serialPrefix.c_str(), i + 1);
        m_cameras.push_back(std::make_unique<FakeGigeCamera>(serial, "127.0.0." + std::to_string(firstHost + i)));
    }
}

bool FakeGigeFleet::Start(std::string& why)
{
    if (!InPrivateNetworkNamespace()) {
        why = "no private network namespace: GigE Vision is never run on the host's network";
        return false;
    }
    for (std::size_t i = 0; i < m_cameras.size(); ++i) {
        const std::string& address = m_cameras[i]->Address();
        int host = std::stoi(address.substr(address.rfind('.') + 1));
        if (!AddLoopbackAddress(address, host, why))
            return false;
        if (!m_cameras[i]->Start()) {
            why = std::string(FakeGigeCamera::kProgram) + " did not start on " + address;
            return false;
        }
        // The library tells GigE cameras apart by their MAC addresses, as a host must with real ones.
        if (!m_cameras[i]->SetMacAddressLow(0x02000000u | static_cast<uint32_t>(host))) {
            why = "could not give the fake camera on " + address + " a MAC address of its own";
            return false;
        }
    }
    return true;
}

std::vector<std::string> FakeGigeFleet::Serials() const
{
    std::vector<std::string> serials;
    for (const auto& camera : m_cameras)
        serials.push_back(camera->SerialNumber());
    return serials;
}

std::vector<std::string> FakeGigeFleet::Addresses() const
{
    std::vector<std::string> addresses;
    for (const auto& camera : m_cameras)
        addresses.push_back(camera->Address());
    return addresses;
}

} // namespace Bench
