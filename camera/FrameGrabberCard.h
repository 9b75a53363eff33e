// What a Camera Link camera needs of the frame grabber it sits behind. The device layer's card
// implements it, so cameras reach their card without knowing the device layer.
#pragma once

#include <string>

class FrameGrabberCard {
public:
    virtual bool IsOpened() const = 0;
    // The text through which the card names the camera driving it.
    virtual void SetCameraName(const std::string& name) = 0;

protected:
    ~FrameGrabberCard() = default;
};
