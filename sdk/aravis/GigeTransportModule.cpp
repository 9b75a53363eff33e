#include "sdk/aravis/GigeTransportModule.h"

#include "genapi/ArvNodeMap.h"
#include "sdk/aravis/GObjectPtr.h"
#include "genapi/GenicamParsing.h"

namespace ZYLGENICAM {
namespace GigeTransportModule {

namespace {

// Bootstrap registers are big endian: bit 31 of a 4-byte register is its least significant bit.
// Every register is read afresh (NoCache): the device or another host may change them.
constexpr const char* kXml = R"xml(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="GigEVisionTransport" VendorName="ViewerBiz3" StandardNameSpace="GEV"
	SchemaMajorVersion="1" SchemaMinorVersion="0" SchemaSubMinorVersion="1"
	MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="GigE Vision transport layer"
	ProductGuid="0" VersionGuid="0" xmlns="http://www.genicam.org/GenApi/Version_1_0"
	xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
	xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_0 GenApiSchema.xsd">
	<Category Name="Root" NameSpace="Standard">
		<pFeature>GevCurrentIPConfigurationPersistentIP</pFeature>
		<pFeature>GevCurrentIPConfigurationDHCP</pFeature>
		<pFeature>GevCurrentIPConfigurationLLA</pFeature>
		<pFeature>GevCurrentIPAddress</pFeature>
		<pFeature>GevCurrentSubnetMask</pFeature>
		<pFeature>GevCurrentDefaultGateway</pFeature>
		<pFeature>GevPersistentIPAddress</pFeature>
		<pFeature>GevPersistentSubnetMask</pFeature>
		<pFeature>GevPersistentDefaultGateway</pFeature>
		<pFeature>GevMACAddress</pFeature>
		<pFeature>GevLinkSpeed</pFeature>
		<pFeature>GevSCPSPacketSize</pFeature>
		<pFeature>GevHeartbeatTimeout</pFeature>
		<pFeature>GevCCP</pFeature>
	</Category>
	<Boolean Name="GevCurrentIPConfigurationPersistentIP" NameSpace="Standard">
		<pValue>IPConfigurationPersistentIPBit</pValue><OnValue>1</OnValue><OffValue>0</OffValue>
	</Boolean>
	<MaskedIntReg Name="IPConfigurationPersistentIPBit">
		<Address>0x0014</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Bit>31</Bit><Endianess>BigEndian</Endianess>
	</MaskedIntReg>
	<Boolean Name="GevCurrentIPConfigurationDHCP" NameSpace="Standard">
		<pValue>IPConfigurationDHCPBit</pValue><OnValue>1</OnValue><OffValue>0</OffValue>
	</Boolean>
	<MaskedIntReg Name="IPConfigurationDHCPBit">
		<Address>0x0014</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Bit>30</Bit><Endianess>BigEndian</Endianess>
	</MaskedIntReg>
	<Boolean Name="GevCurrentIPConfigurationLLA" NameSpace="Standard">
		<pValue>IPConfigurationLLABit</pValue><OnValue>1</OnValue><OffValue>0</OffValue>
	</Boolean>
	<MaskedIntReg Name="IPConfigurationLLABit">
		<Address>0x0014</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Bit>29</Bit><Endianess>BigEndian</Endianess>
	</MaskedIntReg>
	<IntReg Name="GevCurrentIPAddress" NameSpace="Standard">
		<Address>0x0024</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>IPV4Address</Representation>
	</IntReg>
	<IntReg Name="GevCurrentSubnetMask" NameSpace="Standard">
		<Address>0x0034</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>IPV4Address</Representation>
	</IntReg>
	<IntReg Name="GevCurrentDefaultGateway" NameSpace="Standard">
		<Address>0x0044</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>IPV4Address</Representation>
	</IntReg>
	<IntReg Name="GevPersistentIPAddress" NameSpace="Standard">
		<Address>0x064c</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>IPV4Address</Representation>
	</IntReg>
	<IntReg Name="GevPersistentSubnetMask" NameSpace="Standard">
		<Address>0x065c</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>IPV4Address</Representation>
	</IntReg>
	<IntReg Name="GevPersistentDefaultGateway" NameSpace="Standard">
		<Address>0x066c</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>IPV4Address</Representation>
	</IntReg>
	<MaskedIntReg Name="GevMACAddress" NameSpace="Standard">
		<Address>0x0008</Address><Length>8</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<LSB>63</LSB><MSB>16</MSB><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
		<Representation>MACAddress</Representation>
	</MaskedIntReg>
	<IntReg Name="GevLinkSpeed" NameSpace="Standard">
		<ToolTip>Link speed in Mbit/s (devices that do not report it refuse the read).</ToolTip>
		<Address>0xb000</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<MaskedIntReg Name="GevSCPSPacketSize" NameSpace="Standard">
		<Address>0x0d04</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><LSB>31</LSB><MSB>16</MSB><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</MaskedIntReg>
	<IntReg Name="GevHeartbeatTimeout" NameSpace="Standard">
		<ToolTip>Heartbeat timeout in ms.</ToolTip>
		<Address>0x0938</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Enumeration Name="GevCCP" NameSpace="Standard">
		<ToolTip>Control access of the application that holds the device (read only: Aravis keeps it).</ToolTip>
		<EnumEntry Name="OpenAccess"><Value>0</Value></EnumEntry>
		<EnumEntry Name="ExclusiveAccess"><Value>1</Value></EnumEntry>
		<EnumEntry Name="ControlAccess"><Value>2</Value></EnumEntry>
		<pValue>ControlChannelPrivilege</pValue>
	</Enumeration>
	<MaskedIntReg Name="ControlChannelPrivilege">
		<Address>0x0a00</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Cachable>NoCache</Cachable><LSB>31</LSB><MSB>30</MSB><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</MaskedIntReg>
	<Port Name="Device" NameSpace="Standard"/>
</RegisterDescription>
)xml";

} // namespace

const std::string& Xml()
{
    static const std::string xml = kXml;
    return xml;
}

std::unique_ptr<GenApi_3_4::INodeMap> CreateNodeMap(ArvDevice* device)
{
    GObjectPtr<ArvGc> genicam;
    {
        const auto parsing = GenApi_3_4::LockGenicamParsing();
        genicam.reset(arv_gc_new(device, Xml().data(), Xml().size()));
    }
    if (!genicam)
        return nullptr;
    return std::make_unique<GenApi_3_4::ArvNodeMap>(genicam.get(), device, "TransportLayer");
}

} // namespace GigeTransportModule
} // namespace ZYLGENICAM
