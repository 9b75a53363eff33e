#include "SdkBufferWatch.h"

#include <arv.h>
#include <dlfcn.h>

#include <mutex>
#include <set>

namespace {

std::mutex g_mutex;
std::set<const void*> g_bufferData;

using NewBufferFunction = ArvBuffer* (*)(size_t, void*, void*, GDestroyNotify);

} // namespace

// The executable's definition comes first for the code linked into it; Aravis's own is next.
extern "C" ArvBuffer* arv_buffer_new_full(size_t size, void* preallocated, void* userData,
                                          GDestroyNotify userDataDestroy)
{
    static const auto aravis = reinterpret_cast<NewBufferFunction>(dlsym(RTLD_NEXT, "arv_buffer_new_full"));
    ArvBuffer* buffer = aravis(size, preallocated, userData, userDataDestroy);
    if (buffer != nullptr) {
        size_t dataSize = 0;
        const void* data = arv_buffer_get_data(buffer, &dataSize);
        std::lock_guard<std::mutex> lock(g_mutex);
        g_bufferData.insert(data);
    }
    return buffer;
}

namespace Bench {

void SdkBufferWatch::Clear()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_bufferData.clear();
}

std::size_t SdkBufferWatch::BufferCount()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_bufferData.size();
}

bool SdkBufferWatch::IsBufferData(const void* data)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_bufferData.count(data) > 0;
}

} // namespace Bench
