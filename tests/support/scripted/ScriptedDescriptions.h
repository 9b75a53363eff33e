// Ready-made device descriptions built on the GenICam documents in tests/data.
#pragma once

#include <string>

#include "support/scripted/ScriptedTypes.h"

namespace Scripted {

// Text of a file in tests/data (fails the test and returns "" when it cannot be read).
std::string ReadTestData(const std::string& fileName);

// The documents: "scripted_area_camera.xml" (DeviceUserID, AcquisitionMode, AcquisitionFrameCount,
// Width, Height, PixelFormat) and "scripted_profile_camera.xml" (the profile camera's features).
std::string AreaCameraXml();
std::string ProfileCameraXml();
// Module 2 of the cameras: "scripted_auxiliary.xml" (StreamBufferCount, StreamPacketSize).
std::string AuxiliaryXml();
// Module 2 of frame-grabber cards and Camera Link cameras: "scripted_card.xml" (CardName, TapGeometry, SerialBaudRate).
std::string CardXml();

// An area camera: module 3 from the area document, module 2 the auxiliary one; frames 640 x 480 Mono8
// with ids 1, 2, 3...
DeviceDescription AreaCamera(const std::string& serialNumber, const std::string& userDefinedName = "",
                             int tlType = ZYLGENICAM::TL_GIGE);
// A profile camera (serial numbers of profile cameras start with 'F'): module 3 from the profile document;
// frames 3200 x 1 Coord3D_C16 with two chunks (64 and 6400 bytes), ids 1, 2, 3...
DeviceDescription ProfileCamera(const std::string& serialNumber, const std::string& userDefinedName = "",
                                int tlType = ZYLGENICAM::TL_GIGE);
// A frame-grabber card whose serial number is its key; module 2 holds the card document.
DeviceDescription FrameGrabberCard(const std::string& cardKey);
// A Camera Link camera behind the card cardKey ("GenCPCamera" for a serial-only camera): module 3 from
// the area document, module 2 the card document.
DeviceDescription CameraLinkCamera(const std::string& serialNumber, const std::string& cardKey,
                                   const std::string& protocol = "", const std::string& serialPort = "");

} // namespace Scripted
