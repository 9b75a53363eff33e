// GigE Vision discovery broadcasts on every interface, so these tests run in a network namespace
// of their own with only loopback up.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/common/PrivateNetworkNamespace.h"

bool g_privateNetworkNamespace = false;
std::string g_privateNetworkNamespaceFailure;

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    g_privateNetworkNamespace = EnterPrivateNetworkNamespace(g_privateNetworkNamespaceFailure);
    if (!g_privateNetworkNamespace)
        std::fprintf(stderr, "no private network namespace: %s\n", g_privateNetworkNamespaceFailure.c_str());
    return RUN_ALL_TESTS();
}
