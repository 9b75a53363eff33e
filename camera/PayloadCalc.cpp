#include "camera/PayloadCalc.h"

#include <cstdint>

namespace {

// A run of consecutive pixel-format codes sharing a channel count. The bits
// per pixel need no column: for every listed code it is the PFNC effective
// bits-per-pixel field, bits 16-23 of the code.
struct PixelFormatRange {
    unsigned long first;
    unsigned long last;
    unsigned long channels;
};

constexpr PixelFormatRange knownPixelFormats[] = {
    {0x0104010D, 0x01040110, 3}, // four 4-bit packed formats
    {0x01080001, 0x01080002, 1}, // Mono8, Mono8s
    {0x01080008, 0x0108000B, 3}, // Bayer 8-bit
    {0x010A0046, 0x010A0046, 1}, // Mono10p
    {0x010A0052, 0x010A0052, 3}, // BayerBG10p
    {0x010A0054, 0x010A0054, 3}, // BayerGB10p
    {0x010A0056, 0x010A0056, 3}, // BayerGR10p
    {0x010A0058, 0x010A0058, 3}, // BayerRG10p
    {0x010C0004, 0x010C0004, 1}, // Mono10Packed
    {0x010C0006, 0x010C0006, 1}, // Mono12Packed
    {0x010C0026, 0x010C002D, 3}, // Bayer 10- and 12-bit packed
    {0x010C0047, 0x010C0047, 1}, // Mono12p
    {0x010C0053, 0x010C0053, 3}, // BayerBG12p
    {0x010C0055, 0x010C0055, 3}, // BayerGB12p
    {0x010C0057, 0x010C0057, 3}, // BayerGR12p
    {0x010C0059, 0x010C0059, 3}, // BayerRG12p
    {0x010E0104, 0x010E0104, 1}, // 14-bit packed monochrome
    {0x010E0105, 0x010E0108, 3}, // 14-bit packed Bayer
    {0x01100003, 0x01100003, 1}, // Mono10
    {0x01100005, 0x01100005, 1}, // Mono12
    {0x01100007, 0x01100007, 1}, // Mono16
    {0x0110000C, 0x01100013, 3}, // Bayer 10- and 12-bit unpacked
    {0x01100025, 0x01100025, 1}, // Mono14
    {0x0110002E, 0x01100031, 3}, // Bayer 16-bit
    {0x01100109, 0x0110010C, 3}, // further 16-bit Bayer
    {0x020C001E, 0x020C001E, 3}, // YUV411_8_UYYVYY
    {0x0210001F, 0x0210001F, 3}, // YUV 4:2:2 8-bit
    {0x02100032, 0x02100032, 3}, {0x02100035, 0x02100036, 3}, {0x0210003B, 0x0210003B, 3},
    {0x02100041, 0x02100041, 3}, {0x02180014, 0x02180015, 3}, // RGB8, BGR8
    {0x02180020, 0x02180020, 3},                              // YUV8_UYV
    {0x02180040, 0x02180040, 3}, {0x021E005C, 0x021E005C, 3}, // 30-bit packed colour
    {0x02300018, 0x02300018, 3},                              // RGB10
    {0x0230001A, 0x0230001A, 3},                              // RGB12
};

const PixelFormatRange* FindPixelFormat(unsigned long pixelFormat)
{
    for (const PixelFormatRange& range : knownPixelFormats) {
        if (pixelFormat >= range.first && pixelFormat <= range.last) {
            return &range;
        }
    }
    return nullptr;
}

} // namespace

namespace Utilities {

void PayloadCalc(unsigned long width, unsigned long height, unsigned long pixelFormat, unsigned long& bitDepth,
                 unsigned long& channels, unsigned long& payloadSize)
{
    bitDepth = 8;
    const PixelFormatRange* format = FindPixelFormat(pixelFormat);
    if (format == nullptr) {
        channels = 1;
        payloadSize = 0;
        return;
    }
    channels = format->channels;
    const std::uint64_t bitsPerPixel = (pixelFormat >> 16) & 0xFF;
    // Multiply before dividing so that packed formats round only once.
    payloadSize = static_cast<unsigned long>(static_cast<std::uint64_t>(width) * height * bitsPerPixel >> 3);
}

} // namespace Utilities
