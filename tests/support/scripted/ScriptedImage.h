// A frame handed out by a scripted device, with its chunks. Pixel and chunk buffers are allocated
// on first use and freed at Release, so a read after Release is caught by the sanitizers as well.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ZylImage.h"
#include "support/scripted/ScriptedDevice.h"

namespace Scripted {

// A zero-filled buffer of a fixed size, allocated on first use.
struct LazyBuffer {
    explicit LazyBuffer(uint64_t bytesWanted) : size(bytesWanted) {}

    const uint64_t size;
    std::once_flag allocated;
    std::vector<unsigned char> bytes;

    const void* Data()
    {
        std::call_once(allocated, [this] { bytes.assign(size, 0); });
        return bytes.data();
    }
};

class ScriptedImage final : public ZYLGENICAM::IImage {
public:
    // PFNC codes carry the bits per pixel in bits 16 to 23.
    ScriptedImage(ScriptedDevice& device, const FrameStep& step)
        : m_device(device), m_step(step), m_data(step.width * step.height * ((step.pixelFormat >> 16) & 0xFF) / 8)
    {
        for (uint64_t size : m_step.chunkSizes) {
            m_chunks.push_back(std::make_unique<Chunk>(*this, m_chunks.size() + 1, size));
        }
    }

    bool IsValid() override { return CheckOut(__func__); }
    uint64_t GetFrameId() override { return Checked(__func__, m_step.frameId); }
    uint64_t GetWidth() override { return Checked(__func__, m_step.width); }
    uint64_t GetHeight() override { return Checked(__func__, m_step.height); }
    uint64_t GetPixelFormat() override { return Checked(__func__, m_step.pixelFormat); }
    std::list<ZYLGENICAM::IChunk*> GetChunkList() override
    {
        std::list<ZYLGENICAM::IChunk*> chunks;
        if (CheckOut(__func__)) {
            for (const auto& chunk : m_chunks) {
                chunks.push_back(chunk.get());
            }
        }
        return chunks;
    }
    const void* GetData() override { return CheckOut(__func__) ? m_data.Data() : nullptr; }
    uint64_t GetDataSize() override { return Checked(__func__, m_data.size); }
    uint64_t GetTimestamp() override { return Checked(__func__, 0); }
    void Release() override
    {
        if (m_released.exchange(true)) {
            Misuse(&DeviceCounters::doubleReleases, "image released twice");
            return;
        }
        std::vector<unsigned char>().swap(m_data.bytes);
        m_chunks.clear();
        m_device.Count(&DeviceCounters::imagesReleased);
    }

private:
    class Chunk final : public ZYLGENICAM::IChunk {
    public:
        Chunk(ScriptedImage& image, uint64_t id, uint64_t size) : m_image(image), m_id(id), m_data(size) {}

        uint64_t GetChunkSize() override { return m_image.Checked(__func__, m_data.size); }
        uint64_t GetChunkId() override { return m_image.Checked(__func__, m_id); }
        const void* GetChunkData() override { return m_image.CheckOut(__func__) ? m_data.Data() : nullptr; }

    private:
        ScriptedImage& m_image;
        const uint64_t m_id;
        LazyBuffer m_data;
    };

    // Reports a use after Release; true when the image is still out.
    bool CheckOut(const char* operation) const
    {
        if (m_released.load()) {
            Misuse(&DeviceCounters::imageUsesAfterRelease, std::string(operation) + " on a released image");
            return false;
        }
        return true;
    }
    // Counts a misuse the library made of the image and fails the running test.
    void Misuse(uint64_t DeviceCounters::*counter, const std::string& what) const
    {
        m_device.Count(counter);
        ADD_FAILURE() << "scripted device " << m_device.SerialNumber() << ": " << what;
    }
    uint64_t Checked(const char* operation, uint64_t value) const
    {
        CheckOut(operation);
        return value;
    }

    ScriptedDevice& m_device;
    const FrameStep m_step;
    std::atomic<bool> m_released{false};
    LazyBuffer m_data;
    std::vector<std::unique_ptr<Chunk>> m_chunks;
};

} // namespace Scripted
