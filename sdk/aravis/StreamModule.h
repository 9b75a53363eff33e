// Module 4 on Aravis: the data stream's settings (buffer count, packet resend; packet size read
// from the device) and its counters (completed, failed and underrun buffers, resent and missing
// packets). Aravis keeps these as properties of its stream object, not as registers, so a small
// in-process Aravis device of ours answers a register map of them, live, and a GenICam
// description of ours over that map is read through the same GenApi layer as every node map.
// Counters belong to the acquisition running now and read 0 between acquisitions.
#pragma once

#include <arv.h>

#include <cstdint>
#include <memory>
#include <mutex>

#include "genapi/GenApi.h"
#include "sdk/aravis/AcquisitionStream.h"
#include "sdk/aravis/AravisModule.h"
#include "sdk/aravis/GObjectPtr.h"

namespace ZYLGENICAM {

class StreamModule {
public:
    // device: the camera's open device (packet size of GigE Vision devices); not owned, outlives us.
    StreamModule(ArvDevice* device, unsigned defaultBufferCount);
    ~StreamModule();
    StreamModule(const StreamModule&) = delete;
    StreamModule& operator=(const StreamModule&) = delete;

    IModule* Module() { return m_module.get(); }

    // Settings for the next acquisition.
    unsigned BufferCount() const;
    bool PacketResend() const;

    // The acquisition whose counters the module shows, until Detach.
    void Attach(std::shared_ptr<AcquisitionStream> stream);
    void Detach();

    // The register map the description addresses (8-byte big-endian values).
    bool ReadRegister(uint64_t address, uint64_t& value);
    bool WriteRegister(uint64_t address, uint64_t value);

private:
    ArvDevice* m_device;
    mutable std::mutex m_mutex;
    unsigned m_bufferCount;
    bool m_packetResend = true;
    std::shared_ptr<AcquisitionStream> m_stream;
    GObjectPtr<ArvDevice> m_registers;
    std::unique_ptr<GenApi_3_4::INodeMap> m_nodeMap;
    std::unique_ptr<AravisModule> m_module;
};

} // namespace ZYLGENICAM
