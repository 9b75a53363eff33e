// The bandwidth statistic rests on these sizes; a few formats of each kind
// stand for their families.
#include <gtest/gtest.h>

#include <tuple>

#include "camera/PayloadCalc.h"

namespace {

// width, height, pixel format, bytes, channels
using PayloadCase = std::tuple<unsigned long, unsigned long, unsigned long, unsigned long, unsigned long>;

class PayloadCalc : public ::testing::TestWithParam<PayloadCase> {};

TEST_P(PayloadCalc, GivesBytesAndChannelsAndAlwaysDepthEight)
{
    const auto [width, height, format, bytes, channels] = GetParam();
    unsigned long depth = 99, outChannels = 99, outBytes = 99; // every output must be written
    Utilities::PayloadCalc(width, height, format, depth, outChannels, outBytes);
    EXPECT_EQ(bytes, outBytes);
    EXPECT_EQ(channels, outChannels);
    EXPECT_EQ(8ul, depth);
}

INSTANTIATE_TEST_SUITE_P(Formats, PayloadCalc,
                         ::testing::Values(PayloadCase{640, 480, 0x01080001, 640 * 480, 1},     // Mono8
                                           PayloadCase{640, 480, 0x01080009, 640 * 480, 3},     // BayerRG8
                                           PayloadCase{640, 480, 0x02180014, 640 * 480 * 3, 3}, // RGB8
                                           PayloadCase{640, 480, 0x01100007, 640 * 480 * 2, 1}, // Mono16
                                           PayloadCase{3, 1, 0x0104010D, 1, 3},    // 12 bits round down once
                                           PayloadCase{1, 3, 0x010A0046, 3, 1},    // Mono10p: 30 bits, not 3 x 1
                                           PayloadCase{7, 1, 0x021E005C, 26, 3},   // 210 bits
                                           PayloadCase{0, 1024, 0x02300018, 0, 3}, // no width
                                           PayloadCase{65536, 65536, 0x02300018, 65536ul * 65536ul * 6,
                                                       3},                          // beyond 32 bits
                                           PayloadCase{640, 480, 0x01080003, 0, 1}, // unknown neighbour
                                           PayloadCase{640, 480, 0xFFFFFFFF, 0, 1}));

} // namespace
