#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "camera/PayloadCalc.h"

namespace {

// The published table of pixel formats, written out code by code.
struct FormatRow {
    std::vector<unsigned long> codes;
    unsigned long bitsPerPixel;
    unsigned long channels;
};

std::vector<unsigned long> Run(unsigned long first, unsigned long last)
{
    std::vector<unsigned long> codes;
    for (unsigned long code = first; code <= last; ++code) {
        codes.push_back(code);
    }
    return codes;
}

const std::vector<FormatRow>& KnownFormats()
{
    static const std::vector<FormatRow> rows = {
        {Run(0x0104010D, 0x01040110), 4, 3},
        {Run(0x01080001, 0x01080002), 8, 1},
        {Run(0x01080008, 0x0108000B), 8, 3},
        {{0x010A0046}, 10, 1},
        {{0x010A0052, 0x010A0054, 0x010A0056, 0x010A0058}, 10, 3},
        {{0x010C0004, 0x010C0006}, 12, 1},
        {Run(0x010C0026, 0x010C002D), 12, 3},
        {{0x010C0047}, 12, 1},
        {{0x010C0053, 0x010C0055, 0x010C0057, 0x010C0059}, 12, 3},
        {{0x010E0104}, 14, 1},
        {Run(0x010E0105, 0x010E0108), 14, 3},
        {{0x01100003, 0x01100005, 0x01100007}, 16, 1},
        {Run(0x0110000C, 0x01100013), 16, 3},
        {{0x01100025}, 16, 1},
        {Run(0x0110002E, 0x01100031), 16, 3},
        {Run(0x01100109, 0x0110010C), 16, 3},
        {{0x020C001E}, 12, 3},
        {{0x0210001F, 0x02100032, 0x02100035, 0x02100036, 0x0210003B, 0x02100041}, 16, 3},
        {{0x02180014, 0x02180015, 0x02180020, 0x02180040}, 24, 3},
        {{0x021E005C}, 30, 3},
        {{0x02300018, 0x0230001A}, 48, 3},
    };
    return rows;
}

struct Payload {
    unsigned long bitDepth = 12345;
    unsigned long channels = 12345;
    unsigned long bytes = 12345;
};

Payload Calculate(unsigned long width, unsigned long height, unsigned long pixelFormat)
{
    Payload payload; // garbage first: every output must be written
    Utilities::PayloadCalc(width, height, pixelFormat, payload.bitDepth, payload.channels, payload.bytes);
    return payload;
}

std::string Hex(unsigned long code)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%08lX", code);
    return text;
}

TEST(PayloadCalc, EveryListedFormatGivesItsBytesChannelsAndDepth)
{
    for (const FormatRow& row : KnownFormats()) {
        for (unsigned long code : row.codes) {
            const Payload payload = Calculate(2448, 2048, code);
            EXPECT_EQ(2448ul * 2048ul * row.bitsPerPixel / 8, payload.bytes) << Hex(code);
            EXPECT_EQ(row.channels, payload.channels) << Hex(code);
            EXPECT_EQ(8ul, payload.bitDepth) << Hex(code);
        }
    }
}

TEST(PayloadCalc, UnknownFormatsGiveNoBytesOneChannel)
{
    // Neighbours of listed codes and codes whose size field looks valid.
    for (unsigned long code : {0x0ul, 0x01080000ul, 0x01080003ul, 0x0108000Cul, 0x010A0053ul, 0x010C0005ul,
                               0x01100004ul, 0x02180016ul, 0x0230001Bul, 0xFFFFFFFFul}) {
        const Payload payload = Calculate(640, 480, code);
        EXPECT_EQ(0ul, payload.bytes) << Hex(code);
        EXPECT_EQ(1ul, payload.channels) << Hex(code);
        EXPECT_EQ(8ul, payload.bitDepth) << Hex(code);
    }
}

TEST(PayloadCalc, PackedFormatsRoundDownOnceAfterMultiplying)
{
    EXPECT_EQ(1ul, Calculate(3, 1, 0x0104010D).bytes); // 12 bits
    EXPECT_EQ(1ul, Calculate(1, 1, 0x010C0006).bytes); // Mono12Packed: 12 bits
    EXPECT_EQ(3ul, Calculate(1, 3, 0x010A0046).bytes); // Mono10p: 30 bits, not 3 x 1
    EXPECT_EQ(26ul, Calculate(7, 1, 0x021E005C).bytes); // 210 bits
}

TEST(PayloadCalc, ZeroWidthOrHeightGivesNoBytesForEveryFormat)
{
    for (const FormatRow& row : KnownFormats()) {
        for (unsigned long code : row.codes) {
            EXPECT_EQ(0ul, Calculate(0, 1024, code).bytes) << Hex(code);
            EXPECT_EQ(0ul, Calculate(1024, 0, code).bytes) << Hex(code);
            EXPECT_EQ(row.channels, Calculate(0, 0, code).channels) << Hex(code);
        }
    }
}

TEST(PayloadCalc, LargeFramesDoNotOverflowBeforeTheDivision)
{
    // 65536 x 65536 x 48 bits is beyond 32 bits at every step.
    EXPECT_EQ(65536ul * 65536ul * 6ul, Calculate(65536, 65536, 0x02300018).bytes);
}

} // namespace
