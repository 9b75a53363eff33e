// One delivered frame as the viewer keeps it after the library's buffer went
// back: the picture converted for the screen and, where the screen picture
// cannot tell, the sensor values.
#pragma once

#include <QImage>
#include <QMetaType>
#include <QVector>

#include <cstdint>

struct DisplayFrame {
    QImage image;           // what is drawn: Grayscale8, RGB888 or RGB32 (colour-mapped heights)
    QImage sensorValues;    // Grayscale16 for Mono10/12/16 and range images, else null
    QVector<float> profile; // heights over x of a profile camera's newest profile, else empty
    std::uint64_t frameId = 0;
    std::uint64_t pixelFormat = 0;
    int imageMode = 0; // the profile camera's image mode the frame was taken in

    bool HasPicture() const { return !image.isNull(); }
};

Q_DECLARE_METATYPE(DisplayFrame)
