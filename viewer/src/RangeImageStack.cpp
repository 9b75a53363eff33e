#include "RangeImageStack.h"

#include <cstring>

void RangeImageStack::Clear()
{
    m_picture = QImage();
    m_heights = QImage();
    m_nextLine = 0;
}

void RangeImageStack::Append(const QImage& picture, const QImage& heights)
{
    if (m_picture.width() != picture.width() || m_picture.format() != picture.format() ||
        heights.size() != picture.size()) {
        m_picture = QImage(picture.width(), Lines, picture.format());
        m_picture.fill(Qt::black);
        m_heights = QImage(picture.width(), Lines, QImage::Format_Grayscale16);
        m_heights.fill(0);
        m_nextLine = 0;
    }
    const qsizetype pictureBytes = picture.bytesPerLine();
    const qsizetype heightBytes = std::min(heights.bytesPerLine(), m_heights.bytesPerLine());
    for (int y = 0; y < picture.height(); ++y) {
        std::memcpy(m_picture.scanLine(m_nextLine), picture.constScanLine(y), pictureBytes);
        std::memcpy(m_heights.scanLine(m_nextLine), heights.constScanLine(y), heightBytes);
        m_nextLine = (m_nextLine + 1) % Lines;
    }
    std::memset(m_picture.scanLine(m_nextLine), 0xff, pictureBytes);
}
