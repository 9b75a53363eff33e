// GigE Vision discovery broadcasts on every interface, so these tests run in a
// network namespace of their own with only loopback up.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool EnterPrivateNetworkNamespace(std::string& why)
{
    if (unshare(CLONE_NEWNET) != 0) {
        why = std::string("unshare(CLONE_NEWNET) failed: ") + std::strerror(errno);
        return false;
    }
    int fd = socket(AF_INET, SOCK_DGRAM, 0);
    if (fd < 0) {
        why = "no socket in the new namespace";
        return false;
    }
    ifreq request {};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    bool up = ioctl(fd, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags |= IFF_UP | IFF_RUNNING;
    up = up && ioctl(fd, SIOCSIFFLAGS, &request) == 0;
    close(fd);
    if (!up)
        why = "could not bring loopback up in the new namespace";
    return up;
}

} // namespace

bool g_privateNetworkNamespace = false;
std::string g_privateNetworkNamespaceFailure;

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    g_privateNetworkNamespace = EnterPrivateNetworkNamespace(g_privateNetworkNamespaceFailure);
    if (!g_privateNetworkNamespace)
        std::fprintf(stderr, "GigE tests are skipped: %s\n", g_privateNetworkNamespaceFailure.c_str());
    return RUN_ALL_TESTS();
}
