// A frame handed out by GetImage: the Aravis buffer itself, never a copy. Release() pushes the
// buffer back into its stream, which this image keeps alive.
#pragma once

#include <arv.h>

#include <memory>
#include <vector>

#include "ZylImage.h"
#include "sdk/aravis/AcquisitionStream.h"
#include "sdk/aravis/AravisChunk.h"

namespace ZYLGENICAM {

class AravisImage final : public IImage {
public:
    AravisImage(std::shared_ptr<AcquisitionStream> stream, ArvBuffer* buffer, uint64_t frameId);

    bool IsValid() override;
    uint64_t GetFrameId() override { return m_frameId; }
    uint64_t GetWidth() override;
    uint64_t GetHeight() override;
    uint64_t GetPixelFormat() override;
    std::list<IChunk*> GetChunkList() override;
    const void* GetData() override { return m_data; }
    uint64_t GetDataSize() override;
    uint64_t GetTimestamp() override;
    void Release() override;

private:
    ~AravisImage() = default;

    std::shared_ptr<AcquisitionStream> m_stream;
    ArvBuffer* m_buffer;
    uint64_t m_frameId;
    const uint8_t* m_data = nullptr;
    std::size_t m_size = 0;
    std::vector<AravisChunk> m_chunks;
};

} // namespace ZYLGENICAM
