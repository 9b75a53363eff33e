// Host adapters as discovery sees them, and the subnet test behind a camera's
// availability. Adapter listings run only inside a namespace of the test's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "device/Card.h"
#include "device/DeviceManager.h"
#include "device/NetworkAdapters.h"
#include "support/common/NetworkNamespace.h"
#include "support/common/RequireEnvironment.h"

struct SegmentCase {
    const char* ip1;
    const char* mask1;
    const char* ip2;
    const char* mask2;
    bool same;
};

// Whether a camera is reachable from an adapter; garbage gives an answer, never a crash.
TEST(NetworkSegment, SameSegmentTable)
{
    const SegmentCase cases[] = {
        {"192.168.1.10", "255.255.255.0", "192.168.1.200", "255.255.255.0", true},
        {"192.168.2.10", "255.255.255.0", "192.168.1.200", "255.255.255.0", false},
        {"10.0.0.5", "255.0.0.0", "10.1.2.3", "255.0.0.0", true},
        {"10.0.0.5", "255.0.255.0", "10.0.0.3", "255.0.255.0", false},              // a first mask with a hole
        {"192.168.1.10", "255.255.255.0", "192.168.01.10", "255.255.255.0", false}, // pieces compared as text
        {"192.168.1.10", "255.255.255", "192.168.1.10", "255.255.255.0", false},
        {"", "", "", "", false},
        {"a.b.c.d", "x.255.255.0", "a.b.c.e", "255.255.255.0", false},
    };
    for (const SegmentCase& c : cases)
        EXPECT_EQ(DeviceManager::IsNetworkSameSegment(c.ip1, c.mask1, c.ip2, c.mask2), c.same)
            << c.ip1 << "/" << c.mask1 << " and " << c.ip2 << "/" << c.mask2;
}

namespace {

// One line per adapter: key|type|interface|MAC|address|mask|gateway|in-use.
std::string DescribeAdaptersSeenHere()
{
    std::ostringstream text;
    auto adapters = DeviceManager::getInstance()->GetNetworkCards();
    for (auto& entry : adapters) {
        Card* card = entry.second;
        text << entry.first << "|" << card->GetInfo(ViewerBiz3::CARD_TYPE) << "|"
             << card->GetInfo(ViewerBiz3::CARD_INTERFACE_NAME) << "|" << card->GetInfo(ViewerBiz3::CARD_MAC) << "|"
             << card->GetInfo(ViewerBiz3::CARD_IP) << "|" << card->GetInfo(ViewerBiz3::CARD_MASK) << "|"
             << card->GetInfo(ViewerBiz3::CARD_GATEWAY) << "|" << card->GetInfo(ViewerBiz3::CARD_IN_USE) << "\n";
        delete card;
    }
    return text.str();
}

} // namespace

TEST(NetworkAdapters, VethsOfTheTestNamespaceAreListedLoopbackAndInterfacesDownAreNot)
{
    NetworkNamespace space({NetworkNamespace::Veth{"vb3a", "vb3b", "169.254.10.1", 16, "", "02:ab:cd:00:00:7f"},
                            NetworkNamespace::Veth{"vb3c", "vb3d", "169.254.20.1", 24, "169.254.20.2", ""}});
    VB3_REQUIRE(space.IsReady(), space.Failure());
    std::string listing;
    ASSERT_TRUE(space.RunInside(DescribeAdaptersSeenHere, listing));
    EXPECT_NE(listing.find("vb3a[169.254.10.1]|1|vb3a|02:AB:CD:00:00:7F|169.254.10.1|255.255.0.0|0.0.0.0|0\n"),
              std::string::npos)
        << listing;
    EXPECT_NE(listing.find("vb3c[169.254.20.1]|1|vb3c|"), std::string::npos) << listing;
    EXPECT_NE(listing.find("vb3d[169.254.20.2]|1|vb3d|"), std::string::npos) << listing;
    EXPECT_NE(listing.find("|169.254.20.1|255.255.255.0|"), std::string::npos) << listing;
    EXPECT_EQ(listing.find("lo["), std::string::npos) << "loopback has no broadcast flag: " << listing;
    EXPECT_EQ(listing.find("vb3b"), std::string::npos) << "an interface without IPv4 address: " << listing;
    EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), 3) << listing;

    ASSERT_TRUE(space.Ip("link set vb3a down"));
    ASSERT_TRUE(space.RunInside(DescribeAdaptersSeenHere, listing));
    EXPECT_EQ(listing.find("vb3a"), std::string::npos) << listing;
    ASSERT_TRUE(space.RunInside([] { return GetMACAddress("vb3a") + "," + GetMACAddress("missing0"); }, listing));
    EXPECT_EQ(listing, "02:AB:CD:00:00:7F,") << "read by name, also when down";
}
