// Notes where the pixels of every buffer Aravis creates live, so that a benchmark can tell
// whether the image the host receives is the SDK's own buffer or a copy. The programs that
// link it interpose arv_buffer_new_full, through which the SDK makes its stream buffers.
#pragma once

#include <cstddef>

namespace Bench {

class SdkBufferWatch {
public:
    // Forgets the buffers noted so far.
    static void Clear();
    static std::size_t BufferCount();
    // True when `data` is where one of the noted buffers keeps its pixels.
    static bool IsBufferData(const void* data);
};

} // namespace Bench
