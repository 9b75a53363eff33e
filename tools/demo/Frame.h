// A copy of one delivered image, kept by the host after the library's buffer
// has been released.
#pragma once

#include <cstdint>
#include <vector>

struct Frame {
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t pixelFormat = 0; // PFNC code
    std::uint64_t frameId = 0;
    std::vector<unsigned char> data;
};
