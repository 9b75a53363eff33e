#include "support/common/PrivateNetworkNamespace.h"

#include <sched.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

static bool g_inPrivateNamespace = false;

bool EnterPrivateNetworkNamespace(std::string& why)
{
    if (unshare(CLONE_NEWNET) != 0) {
        why = std::string("unshare(CLONE_NEWNET) failed: ") + std::strerror(errno);
        return false;
    }
    if (std::system("ip link set lo up >/dev/null 2>&1") != 0) {
        why = "could not bring loopback up in the new namespace";
        return false;
    }
    g_inPrivateNamespace = true;
    return true;
}

bool InPrivateNetworkNamespace()
{
    return g_inPrivateNamespace;
}
