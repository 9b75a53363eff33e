// Bytes per frame for a GenICam pixel format, used for the bandwidth statistic.
#pragma once

namespace Utilities {

// bitDepth is always 8; channels is 3 for Bayer, colour and YUV formats and 1
// otherwise; an unknown pixel format gives a payload of 0.
void PayloadCalc(unsigned long width, unsigned long height, unsigned long pixelFormat, unsigned long& bitDepth,
                 unsigned long& channels, unsigned long& payloadSize);

} // namespace Utilities
