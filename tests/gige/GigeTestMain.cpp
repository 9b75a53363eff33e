// GigE Vision discovery broadcasts on every interface, so these tests run in a network namespace
// of their own with only loopback up.
#include <gtest/gtest.h>

#include <string>

#include "support/common/PrivateNetworkNamespace.h"

std::string g_privateNetworkNamespaceFailure;

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Without it every test skips, or fails with CI=true, naming the reason.
    EnterPrivateNetworkNamespace(g_privateNetworkNamespaceFailure);
    return RUN_ALL_TESTS();
}
