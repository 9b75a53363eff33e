// How a device record of the SDK is named and judged by the device lists.
#pragma once

#include <string>

#include "ZylSdk.h"

class Camera;

// An SDK text, empty for null.
std::string SdkText(const char* text);
// The user-defined name (the model name when that is empty), then "(" serial number ")".
std::string CameraIdentifier(ZYLGENICAM::ICameraInfo* info);
// Access states 0 and 1 mean the device cannot be used.
bool IsAccessible(ZYLGENICAM::ICameraInfo* info);
// The texts every listed camera takes from its record (model name, device text cut to
// 32 characters, second device text, serial number) and its availability.
void FillRecordTexts(Camera& camera, ZYLGENICAM::ICameraInfo* info);
