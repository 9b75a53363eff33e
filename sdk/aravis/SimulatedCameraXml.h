// GenICam descriptions of our simulated cameras, embedded so the shipped library needs no data files.
// They keep the stock Aravis fake camera's register addresses for what its simulator reads (width 0x100,
// height 0x104, pixel format 0x128, acquisition command 0x124, frame period 0x138, offsets 0x130/0x134)
// and put our own features at 0xB000 and above, a range the simulator leaves alone.
#pragma once

namespace SimulatedCameraXml {

// Opening of the document; %MODEL% is replaced by the camera's model name.
constexpr const char* kHeader = R"xml(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="%MODEL%" VendorName="ViewerBiz3" StandardNameSpace="None"
	SchemaMajorVersion="1" SchemaMinorVersion="0" SchemaSubMinorVersion="1"
	MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ToolTip="Simulated camera"
	ProductGuid="0" VersionGuid="0" xmlns="http://www.genicam.org/GenApi/Version_1_0"
	xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
	xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_0 GenApiSchema.xsd">
	<Category Name="Root" NameSpace="Standard">
		<pFeature>DeviceControl</pFeature>
		<pFeature>ImageFormatControl</pFeature>
		<pFeature>AcquisitionControl</pFeature>
		<pFeature>TransportLayerControl</pFeature>
		%EXTRA_CATEGORY%
	</Category>
	<Category Name="DeviceControl" NameSpace="Standard">
		<pFeature>DeviceVendorName</pFeature>
		<pFeature>DeviceModelName</pFeature>
		<pFeature>DeviceVersion</pFeature>
		<pFeature>DeviceSerialNumber</pFeature>
		<pFeature>DeviceUserID</pFeature>
	</Category>
	<StringReg Name="DeviceVendorName" NameSpace="Standard">
		<Address>0x48</Address><Length>32</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
	</StringReg>
	<StringReg Name="DeviceModelName" NameSpace="Standard">
		<Address>0x68</Address><Length>32</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
	</StringReg>
	<StringReg Name="DeviceVersion" NameSpace="Standard">
		<Address>0x88</Address><Length>32</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
	</StringReg>
	<StringReg Name="DeviceSerialNumber" NameSpace="Standard">
		<Address>0xd8</Address><Length>16</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
	</StringReg>
	<StringReg Name="DeviceID" NameSpace="Standard">
		<Address>0xd8</Address><Length>16</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
	</StringReg>
	<StringReg Name="DeviceUserID" NameSpace="Standard">
		<Address>0xe8</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
	</StringReg>
	<Category Name="ImageFormatControl" NameSpace="Standard">
		<pFeature>SensorWidth</pFeature>
		<pFeature>SensorHeight</pFeature>
		<pFeature>OffsetX</pFeature>
		<pFeature>OffsetY</pFeature>
		<pFeature>Width</pFeature>
		<pFeature>Height</pFeature>
		<pFeature>PixelFormat</pFeature>
	</Category>
	<Integer Name="SensorHeight" NameSpace="Standard"><pValue>SensorHeightRegister</pValue></Integer>
	<IntReg Name="SensorHeightRegister" NameSpace="Custom">
		<Address>0x118</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="SensorWidth" NameSpace="Standard"><pValue>SensorWidthRegister</pValue></Integer>
	<IntReg Name="SensorWidthRegister" NameSpace="Custom">
		<Address>0x11c</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="OffsetX" NameSpace="Standard">
		<pValue>OffsetXRegister</pValue><Min>0</Min><pMax>SensorWidth</pMax><Inc>1</Inc>
	</Integer>
	<IntReg Name="OffsetXRegister" NameSpace="Custom">
		<Address>0x130</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="OffsetY" NameSpace="Standard">
		<pValue>OffsetYRegister</pValue><Min>0</Min><pMax>SensorHeight</pMax><Inc>1</Inc>
	</Integer>
	<IntReg Name="OffsetYRegister" NameSpace="Custom">
		<Address>0x134</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="Width" NameSpace="Standard">
		<pValue>WidthRegister</pValue><Min>1</Min><pMax>SensorWidth</pMax><Inc>1</Inc>
	</Integer>
	<IntReg Name="WidthRegister" NameSpace="Custom">
		<Address>0x100</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="Height" NameSpace="Standard">
		<pValue>HeightRegister</pValue><Min>1</Min><pMax>SensorHeight</pMax><Inc>1</Inc>
	</Integer>
	<IntReg Name="HeightRegister" NameSpace="Custom">
		<Address>0x104</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Enumeration Name="PixelFormat" NameSpace="Standard">
		%PIXEL_FORMATS%
		<pValue>PixelFormatRegister</pValue>
	</Enumeration>
	<IntReg Name="PixelFormatRegister" NameSpace="Custom">
		<Address>0x128</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Category Name="AcquisitionControl" NameSpace="Standard">
		<pFeature>AcquisitionMode</pFeature>
		<pFeature>AcquisitionFrameCount</pFeature>
		<pFeature>AcquisitionStart</pFeature>
		<pFeature>AcquisitionStop</pFeature>
		<pFeature>AcquisitionFrameRate</pFeature>
	</Category>
	<Command Name="AcquisitionStart" NameSpace="Standard">
		<pValue>AcquisitionCommandRegister</pValue><CommandValue>1</CommandValue>
	</Command>
	<Command Name="AcquisitionStop" NameSpace="Standard">
		<pValue>AcquisitionCommandRegister</pValue><CommandValue>0</CommandValue>
	</Command>
	<IntReg Name="AcquisitionCommandRegister" NameSpace="Custom">
		<Address>0x124</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Enumeration Name="AcquisitionMode" NameSpace="Standard">
		<EnumEntry Name="Continuous" NameSpace="Standard"><Value>1</Value></EnumEntry>
		<EnumEntry Name="SingleFrame" NameSpace="Standard"><Value>2</Value></EnumEntry>
		<EnumEntry Name="MultiFrame" NameSpace="Standard"><Value>3</Value></EnumEntry>
		<pValue>AcquisitionModeRegister</pValue>
	</Enumeration>
	<IntReg Name="AcquisitionModeRegister" NameSpace="Custom">
		<Address>0x12c</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="AcquisitionFrameCount" NameSpace="Standard">
		<pValue>AcquisitionFrameCountRegister</pValue><Min>1</Min><Max>1000000</Max><Inc>1</Inc>
	</Integer>
	<IntReg Name="AcquisitionFrameCountRegister" NameSpace="Custom">
		<Address>0xb000</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Float Name="AcquisitionFrameRate" NameSpace="Standard">
		<pValue>AcquisitionFrameRateConverter</pValue><Min>0.1</Min><Max>10000.0</Max>
	</Float>
	<Converter Name="AcquisitionFrameRateConverter" NameSpace="Custom">
		<FormulaTo>(1000000 / FROM)</FormulaTo>
		<FormulaFrom>(1000000 / TO)</FormulaFrom>
		<pValue>AcquisitionFramePeriod</pValue>
	</Converter>
	<Integer Name="AcquisitionFramePeriod" NameSpace="Custom">
		<pValue>AcquisitionFramePeriodRegister</pValue><Min>100</Min><Max>10000000</Max>
	</Integer>
	<IntReg Name="AcquisitionFramePeriodRegister" NameSpace="Custom">
		<Address>0x138</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
	<Integer Name="TLParamsLocked" NameSpace="Standard">
		<Visibility>Invisible</Visibility><Value>0</Value><Min>0</Min><Max>1</Max>
	</Integer>
	<Category Name="TransportLayerControl" NameSpace="Standard">
		<pFeature>PayloadSize</pFeature>
	</Category>
)xml";

constexpr const char* kFooter = R"xml(
	<Port Name="Device" NameSpace="Standard"/>
</RegisterDescription>
)xml";

constexpr const char* kAreaPixelFormats = R"xml(
		<EnumEntry Name="Mono8" NameSpace="Standard"><Value>17301505</Value></EnumEntry>
		<EnumEntry Name="Mono16" NameSpace="Standard"><Value>17825799</Value></EnumEntry>
		<EnumEntry Name="BayerRG8" NameSpace="Standard"><Value>17301513</Value></EnumEntry>
		<EnumEntry Name="RGB8" NameSpace="Standard"><Value>35127316</Value></EnumEntry>
)xml";

constexpr const char* kProfilePixelFormats = R"xml(
		<EnumEntry Name="Mono16" NameSpace="Standard"><Value>17825799</Value></EnumEntry>
)xml";

// Plain images: the payload is the image.
constexpr const char* kImagePayload = R"xml(
	<IntSwissKnife Name="PayloadSize" NameSpace="Standard">
		<pVariable Name="WIDTH">Width</pVariable>
		<pVariable Name="HEIGHT">Height</pVariable>
		<pVariable Name="PIXELFORMAT">PixelFormat</pVariable>
		<Formula>WIDTH * HEIGHT * ((PIXELFORMAT&gt;&gt;16)&amp;0xFF) / 8</Formula>
	</IntSwissKnife>
)xml";

// The image chunk, an information chunk and two chunk trailers of 8 bytes each.
constexpr const char* kShowModePayload = R"xml(
	<IntSwissKnife Name="PayloadSize" NameSpace="Standard">
		<pVariable Name="WIDTH">Width</pVariable>
		<pVariable Name="HEIGHT">Height</pVariable>
		<pVariable Name="PIXELFORMAT">PixelFormat</pVariable>
		<Formula>WIDTH * HEIGHT * ((PIXELFORMAT&gt;&gt;16)&amp;0xFF) / 8 + 64</Formula>
	</IntSwissKnife>
)xml";

// Room for an image of Height lines or a batch of BatchNumber profiles at 32-bit depth, plus the
// header chunk and the trailers.
constexpr const char* kProfileFeatures = R"xml(
	<IntSwissKnife Name="PayloadSize" NameSpace="Standard">
		<pVariable Name="WIDTH">Width</pVariable>
		<pVariable Name="HEIGHT">Height</pVariable>
		<pVariable Name="BATCH">BatchNumber</pVariable>
		<Formula>WIDTH * ((HEIGHT &gt; BATCH) ? HEIGHT : BATCH) * 4 + 64</Formula>
	</IntSwissKnife>
	<Category Name="ProfileControl" NameSpace="Custom">
		<pFeature>EnableExtraction</pFeature>
		<pFeature>EnableImage</pFeature>
		<pFeature>EnableCalibration</pFeature>
		<pFeature>BatchEnable</pFeature>
		<pFeature>BatchNumber</pFeature>
		<pFeature>AcquisitionLineCount</pFeature>
		<pFeature>Scaler</pFeature>
		<pFeature>DepthDataType</pFeature>
		<pFeature>ZUpSizeInfo</pFeature>
		<pFeature>ZDownSizeInfo</pFeature>
		<pFeature>OutlineLengthMax</pFeature>
		<pFeature>XSizeInfo</pFeature>
		<pFeature>CenterImageY</pFeature>
	</Category>
	%PROFILE_REGISTERS%
	<Enumeration Name="DepthDataType" NameSpace="Custom">
		<EnumEntry Name="Depth16Bit" NameSpace="Custom"><Value>16</Value></EnumEntry>
		<EnumEntry Name="Depth32Bit" NameSpace="Custom"><Value>32</Value></EnumEntry>
		<pValue>DepthDataTypeRegister</pValue>
	</Enumeration>
	<Enumeration Name="CenterImageY" NameSpace="Custom">
		<EnumEntry Name="Off" NameSpace="Custom"><Value>0</Value></EnumEntry>
		<EnumEntry Name="On" NameSpace="Custom"><Value>1</Value></EnumEntry>
		<pValue>CenterImageYRegister</pValue>
	</Enumeration>
	<Integer Name="OutlineLengthMax" NameSpace="Custom">
		<pValue>WidthRegister</pValue>
	</Integer>
)xml";

// One integer feature on its own register: %NAME%, %ADDRESS%, %MIN%, %MAX%, %SIGN%.
constexpr const char* kIntegerFeature = R"xml(
	<Integer Name="%NAME%" NameSpace="Custom">
		<pValue>%NAME%Register</pValue><Min>%MIN%</Min><Max>%MAX%</Max><Inc>1</Inc>
	</Integer>
	<IntReg Name="%NAME%Register" NameSpace="Custom">
		<Address>%ADDRESS%</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>%SIGN%</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
)xml";

// A register without a feature of its own (enumerations point at it).
constexpr const char* kRegisterOnly = R"xml(
	<IntReg Name="%NAME%Register" NameSpace="Custom">
		<Address>%ADDRESS%</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
		<Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>
	</IntReg>
)xml";

} // namespace SimulatedCameraXml
