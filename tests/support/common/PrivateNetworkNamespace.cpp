#include "support/common/PrivateNetworkNamespace.h"

#include <cerrno>
#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool g_inPrivateNamespace = false;

bool BringLoopbackUp(std::string& why)
{
    int fd = socket(AF_INET, SOCK_DGRAM, 0);
    if (fd < 0) {
        why = "no socket in the new namespace";
        return false;
    }
    ifreq request{};
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

bool EnterPrivateNetworkNamespace(std::string& why)
{
    if (g_inPrivateNamespace)
        return true;
    if (unshare(CLONE_NEWNET) != 0) {
        why = std::string("unshare(CLONE_NEWNET) failed: ") + std::strerror(errno);
        return false;
    }
    g_inPrivateNamespace = BringLoopbackUp(why);
    return g_inPrivateNamespace;
}

bool InPrivateNetworkNamespace()
{
    return g_inPrivateNamespace;
}
