// Converts a frame's pixels straight from the library's buffer into the
// picture drawn on screen: the one copy the viewer makes of an image.
#pragma once

#include <cstddef>
#include <cstdint>

#include "DisplayFrame.h"

struct RawPicture {
    const unsigned char* data = nullptr;
    std::size_t size = 0; // bytes at data
    int width = 0;
    int height = 0;
    std::uint64_t format = 0; // PFNC
};

namespace PixelConverter {

// Mono8, Mono10/12/14/16 (stretched from the frame's darkest to its brightest
// value), the four 8-bit Bayer layouts (demosaiced) and RGB8/BGR8. False for
// another format or too few bytes.
bool Convert(const RawPicture& picture, DisplayFrame& frame);

// A 16-bit range image: heights drawn through a colour map, low blue to high red.
bool ConvertRange(const RawPicture& picture, DisplayFrame& frame);

} // namespace PixelConverter
