// Turns one delivered frame into a DisplayFrame while the library still owns
// its buffer. Area and show-mode cameras give pictures; a profile camera gives
// a range image in image mode 0 and, in modes 1 and 2, profiles carried in its
// chunks (a header chunk, then the profile data chunk).
#pragma once

#include <ViewerBiz3/ZylImage.h>

#include "DisplayFrame.h"

namespace FrameDecoder {

// False when nothing drawable came out (invalid frame, unknown format).
bool Decode(ZYLGENICAM::IImage& image, bool profileCamera, int imageMode, DisplayFrame& frame);

} // namespace FrameDecoder
