// A profile camera's range image built up from its frames: each frame's
// lines (successive profiles) are written below the previous ones and wrap
// to the top when the picture is full, as on a line-scan display. A thin
// marker shows where the newest line is.
#pragma once

#include <QImage>

class RangeImageStack {
public:
    static constexpr int Lines = 480;

    void Clear();
    // Adds the colour-mapped lines and their heights (Grayscale16) of one frame.
    void Append(const QImage& picture, const QImage& heights);
    const QImage& Picture() const { return m_picture; }
    const QImage& Heights() const { return m_heights; }

private:
    QImage m_picture;
    QImage m_heights;
    int m_nextLine = 0;
};
