#include "sdk/aravis/StreamModule.h"

#include <cstring>

#include "genapi/ArvNodeMap.h"
#include "genapi/GenicamParsing.h"

// The in-process device that answers the stream's register map: Aravis reads a GenICam port
// through an ArvDevice, so the map is served by a subclass of ours.
G_BEGIN_DECLS
#define VB3_TYPE_STREAM_REGISTERS (vb3_stream_registers_get_type())
G_DECLARE_FINAL_TYPE(Vb3StreamRegisters, vb3_stream_registers, VB3, STREAM_REGISTERS, ArvDevice)
G_END_DECLS

struct _Vb3StreamRegisters {
    ArvDevice parent_instance;
    ZYLGENICAM::StreamModule* module;
};

G_DEFINE_TYPE(Vb3StreamRegisters, vb3_stream_registers, ARV_TYPE_DEVICE)

namespace {

constexpr guint32 kValueSize = 8;

void RefuseAccess(GError** error, guint64 address)
{
    g_set_error(error, ARV_DEVICE_ERROR, ARV_DEVICE_ERROR_INVALID_PARAMETER, "no stream register at 0x%llx",
                static_cast<unsigned long long>(address));
}

gboolean ReadStreamMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    uint64_t value = 0;
    if (size != kValueSize || !VB3_STREAM_REGISTERS(device)->module->ReadRegister(address, value)) {
        RefuseAccess(error, address);
        return FALSE;
    }
    guint64 bigEndian = GUINT64_TO_BE(value);
    std::memcpy(buffer, &bigEndian, kValueSize);
    return TRUE;
}

gboolean WriteStreamMemory(ArvDevice* device, guint64 address, guint32 size, void* buffer, GError** error)
{
    guint64 bigEndian = 0;
    if (size == kValueSize)
        std::memcpy(&bigEndian, buffer, kValueSize);
    if (size != kValueSize ||
        !VB3_STREAM_REGISTERS(device)->module->WriteRegister(address, GUINT64_FROM_BE(bigEndian))) {
        RefuseAccess(error, address);
        return FALSE;
    }
    return TRUE;
}

} // namespace

static void vb3_stream_registers_init(Vb3StreamRegisters* self)
{
    self->module = nullptr;
}

static void vb3_stream_registers_class_init(Vb3StreamRegistersClass* registersClass)
{
    ArvDeviceClass* deviceClass = ARV_DEVICE_CLASS(registersClass);
    deviceClass->read_memory = ReadStreamMemory;
    deviceClass->write_memory = WriteStreamMemory;
}

namespace ZYLGENICAM {

namespace {

enum StreamRegister : uint64_t {
    BUFFER_COUNT = 0x00,
    PACKET_SIZE = 0x08,
    PACKET_RESEND = 0x10,
    COMPLETED_BUFFERS = 0x18,
    FAILED_BUFFERS = 0x20,
    UNDERRUN_BUFFERS = 0x28,
    RESENT_PACKETS = 0x30,
    MISSING_PACKETS = 0x38,
};

constexpr uint64_t kMaxBufferCount = 256;

constexpr const char* kXml = R"xml(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="DataStream" VendorName="ViewerBiz3" StandardNameSpace="None"
	SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
	MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="Data stream of the camera"
	ProductGuid="0" VersionGuid="0" xmlns="http://www.genicam.org/GenApi/Version_1_1"
	xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
	xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_1 GenApiSchema.xsd">
	<Category Name="Root" NameSpace="Standard">
		<pFeature>StreamBufferCount</pFeature>
		<pFeature>StreamPacketSize</pFeature>
		<pFeature>StreamPacketResend</pFeature>
		<pFeature>StreamCompletedBuffers</pFeature>
		<pFeature>StreamFailedBuffers</pFeature>
		<pFeature>StreamUnderrunBuffers</pFeature>
		<pFeature>StreamResentPackets</pFeature>
		<pFeature>StreamMissingPackets</pFeature>
	</Category>
	<Integer Name="StreamBufferCount" NameSpace="Standard">
		<ToolTip>Buffers queued for the next acquisition.</ToolTip>
		<pValue>BufferCountReg</pValue><Min>1</Min><Max>256</Max>
	</Integer>
	<IntReg Name="BufferCountReg">
		<Address>0x00</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<IntReg Name="StreamPacketSize" NameSpace="Standard">
		<ToolTip>GigE Vision stream packet size in bytes (0 for other transports).</ToolTip>
		<Address>0x08</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Enumeration Name="StreamPacketResend" NameSpace="Standard">
		<ToolTip>Whether lost GigE Vision packets are asked for again.</ToolTip>
		<EnumEntry Name="Never"><Value>0</Value></EnumEntry>
		<EnumEntry Name="Always"><Value>1</Value></EnumEntry>
		<pValue>PacketResendReg</pValue>
	</Enumeration>
	<IntReg Name="PacketResendReg">
		<Address>0x10</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<IntReg Name="StreamCompletedBuffers" NameSpace="Standard">
		<Address>0x18</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<IntReg Name="StreamFailedBuffers" NameSpace="Standard">
		<Address>0x20</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<IntReg Name="StreamUnderrunBuffers" NameSpace="Standard">
		<Address>0x28</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<IntReg Name="StreamResentPackets" NameSpace="Standard">
		<Address>0x30</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<IntReg Name="StreamMissingPackets" NameSpace="Standard">
		<Address>0x38</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Stream</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Port Name="Stream" NameSpace="Standard"/>
</RegisterDescription>
)xml";

} // namespace

StreamModule::StreamModule(ArvDevice* device, unsigned defaultBufferCount)
    : m_device(device), m_bufferCount(defaultBufferCount)
{
    m_registers.reset(ARV_DEVICE(g_object_new(VB3_TYPE_STREAM_REGISTERS, nullptr)));
    VB3_STREAM_REGISTERS(m_registers.get())->module = this;
    GObjectPtr<ArvGc> genicam;
    {
        const auto parsing = GenApi_3_4::LockGenicamParsing();
        genicam.reset(arv_gc_new(m_registers.get(), kXml, std::strlen(kXml)));
    }
    m_nodeMap = std::make_unique<GenApi_3_4::ArvNodeMap>(genicam.get(), m_registers.get(), "DataStream");
    m_module = std::make_unique<AravisModule>(m_nodeMap.get(), kXml);
}

// The node map goes first: its nodes read through the register device, which points back here.
StreamModule::~StreamModule()
{
    m_module.reset();
    m_nodeMap.reset();
}

unsigned StreamModule::BufferCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_bufferCount;
}

bool StreamModule::PacketResend() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_packetResend;
}

void StreamModule::Attach(std::shared_ptr<AcquisitionStream> stream)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stream = std::move(stream);
}

void StreamModule::Detach()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_stream.reset();
}

bool StreamModule::ReadRegister(uint64_t address, uint64_t& value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ArvStream* stream = m_stream ? m_stream->Stream() : nullptr;
    guint64 completed = 0, failed = 0, underruns = 0, resent = 0, missing = 0;
    if (stream != nullptr)
        arv_stream_get_statistics(stream, &completed, &failed, &underruns);
    if (stream != nullptr && ARV_IS_GV_STREAM(stream))
        arv_gv_stream_get_statistics(ARV_GV_STREAM(stream), &resent, &missing);
    switch (address) {
    case BUFFER_COUNT:
        value = m_bufferCount;
        return true;
    case PACKET_SIZE:
        value = ARV_IS_GV_DEVICE(m_device) ? arv_gv_device_get_packet_size(ARV_GV_DEVICE(m_device), nullptr) : 0;
        return true;
    case PACKET_RESEND:
        value = m_packetResend ? 1 : 0;
        return true;
    case COMPLETED_BUFFERS:
        value = completed;
        return true;
    case FAILED_BUFFERS:
        value = failed;
        return true;
    case UNDERRUN_BUFFERS:
        value = underruns;
        return true;
    case RESENT_PACKETS:
        value = resent;
        return true;
    case MISSING_PACKETS:
        value = missing;
        return true;
    default:
        return false;
    }
}

bool StreamModule::WriteRegister(uint64_t address, uint64_t value)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (address == BUFFER_COUNT && value >= 1 && value <= kMaxBufferCount) {
        m_bufferCount = unsigned(value);
        return true;
    }
    if (address == PACKET_RESEND && value <= 1) {
        m_packetResend = value == 1;
        ArvStream* stream = m_stream ? m_stream->Stream() : nullptr;
        if (stream != nullptr && ARV_IS_GV_STREAM(stream))
            g_object_set(stream, "packet-resend",
                         m_packetResend ? ARV_GV_STREAM_PACKET_RESEND_ALWAYS : ARV_GV_STREAM_PACKET_RESEND_NEVER,
                         nullptr);
        return true;
    }
    return false;
}

} // namespace ZYLGENICAM
