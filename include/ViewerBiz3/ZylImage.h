// Frames handed out by the camera SDK. A host receives an IImage* in
// IImageUpdate::OnImageUpdate and must call Release() exactly once; until then
// the buffer stays out of the acquisition stream. Nothing is copied.
#pragma once

#include <cstdint>
#include <list>

namespace ZYLGENICAM {

class IChunk {
public:
    virtual uint64_t GetChunkSize() = 0;    // bytes of this chunk's data
    virtual uint64_t GetChunkId() = 0;      // chunk id as the device sent it
    virtual const void* GetChunkData() = 0; // valid until the owning image is released

protected:
    ~IChunk() = default;
};

class IImage {
public:
    virtual bool IsValid() = 0;        // false for an incomplete or failed buffer
    virtual uint64_t GetFrameId() = 0; // 64-bit, keeps counting across 16-bit wraps
    virtual uint64_t GetWidth() = 0;
    virtual uint64_t GetHeight() = 0;
    virtual uint64_t GetPixelFormat() = 0;         // PFNC code
    virtual std::list<IChunk*> GetChunkList() = 0; // chunks live as long as the image
    virtual const void* GetData() = 0;             // pixel data of the image part
    virtual uint64_t GetDataSize() = 0;            // bytes at GetData()
    virtual uint64_t GetTimestamp() = 0;           // device timestamp in ns (0 if unknown)
    virtual void Release() = 0;                    // hands the buffer back; the object is gone after

protected:
    ~IImage() = default;
};

} // namespace ZYLGENICAM
