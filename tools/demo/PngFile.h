#pragma once

#include <string>

#include "Frame.h"

// Writes a frame as PNG: 8-bit mono and Bayer as 8-bit gray, 10- to 16-bit mono
// (and 16-bit 3D coordinates) as 16-bit gray, RGB8/BGR8 as colour. Formats
// the demo does not know are guessed from the bytes per pixel. On failure,
// false with a reason in error.
bool WritePng(const Frame& frame, const std::string& path, std::string& error);
