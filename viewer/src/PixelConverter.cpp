#include "PixelConverter.h"

#include <QColor>

#include <algorithm>
#include <cstring>

#include "PixelFormat.h"

namespace {

int BytesPerPixel(std::uint64_t format)
{
    return static_cast<int>(((format >> 16) & 0xff) / 8);
}

bool Fits(const RawPicture& picture, int bytesPerPixel)
{
    return picture.data != nullptr && picture.width > 0 && picture.height > 0 &&
           picture.size >= std::size_t(picture.width) * std::size_t(picture.height) * std::size_t(bytesPerPixel);
}

// 16-bit samples into the sensor values and, stretched to 0-255, through lut
// into the drawn picture (Grayscale8 when lut is null).
void ConvertSixteenBit(const RawPicture& picture, const QVector<QRgb>* lut, DisplayFrame& frame)
{
    const int count = picture.width * picture.height;
    const auto* samples = reinterpret_cast<const std::uint16_t*>(picture.data);
    const auto [low, high] = std::minmax_element(samples, samples + count);
    const int minimum = *low;
    const int span = std::max(1, int(*high) - minimum);

    frame.sensorValues = QImage(picture.width, picture.height, QImage::Format_Grayscale16);
    frame.image = QImage(picture.width, picture.height, lut ? QImage::Format_RGB32 : QImage::Format_Grayscale8);
    for (int y = 0; y < picture.height; ++y) {
        const std::uint16_t* in = samples + std::size_t(y) * picture.width;
        std::memcpy(frame.sensorValues.scanLine(y), in, std::size_t(picture.width) * 2);
        uchar* out = frame.image.scanLine(y);
        for (int x = 0; x < picture.width; ++x) {
            const int level = (int(in[x]) - minimum) * 255 / span;
            if (lut) {
                reinterpret_cast<QRgb*>(out)[x] = (*lut)[level];
            } else {
                out[x] = uchar(level);
            }
        }
    }
}

// Where red and blue sit in a 2x2 cell (0 top left, 1 top right, 2 bottom left, 3 bottom right).
struct BayerLayout {
    std::uint64_t format;
    int redIndex;
    int blueIndex;
};
const BayerLayout BayerLayouts[] = {{PixelFormat::BayerRG8, 0, 3},
                                    {PixelFormat::BayerGR8, 1, 2},
                                    {PixelFormat::BayerGB8, 2, 1},
                                    {PixelFormat::BayerBG8, 3, 0}};

// Each 2x2 cell of the mosaic gives its red, its blue and the mean of its two
// greens to all four of its pixels.
void Demosaic(const RawPicture& picture, int redIndex, int blueIndex, DisplayFrame& frame)
{
    frame.image = QImage(picture.width, picture.height, QImage::Format_RGB888);
    const int cellsWide = picture.width / 2;
    const int cellsHigh = picture.height / 2;
    for (int cy = 0; cy < std::max(cellsHigh, 1); ++cy) {
        const int top = std::min(cy * 2, picture.height - 1);
        const int bottom = std::min(top + 1, picture.height - 1);
        const uchar* rows[2] = {picture.data + std::size_t(top) * picture.width,
                                picture.data + std::size_t(bottom) * picture.width};
        for (int cx = 0; cx < std::max(cellsWide, 1); ++cx) {
            const int left = std::min(cx * 2, picture.width - 1);
            const int right = std::min(left + 1, picture.width - 1);
            const uchar cell[4] = {rows[0][left], rows[0][right], rows[1][left], rows[1][right]};
            const int green = (int(cell[0]) + cell[1] + cell[2] + cell[3] - cell[redIndex] - cell[blueIndex]) / 2;
            const uchar rgb[3] = {cell[redIndex], uchar(green), cell[blueIndex]};
            for (int y = top; y <= bottom; ++y) {
                uchar* out = frame.image.scanLine(y);
                std::memcpy(out + left * 3, rgb, 3);
                std::memcpy(out + right * 3, rgb, 3);
            }
        }
    }
}

void CopyLines(const RawPicture& picture, int bytesPerPixel, QImage::Format format, DisplayFrame& frame)
{
    frame.image = QImage(picture.width, picture.height, format);
    const std::size_t lineBytes = std::size_t(picture.width) * bytesPerPixel;
    for (int y = 0; y < picture.height; ++y) {
        std::memcpy(frame.image.scanLine(y), picture.data + y * lineBytes, lineBytes);
    }
}

const QVector<QRgb>& HeightColours()
{
    static const QVector<QRgb> colours = [] {
        QVector<QRgb> table(256);
        for (int i = 0; i < 256; ++i) {
            // Hue from blue (low) through green and yellow to red (high).
            table[i] = QColor::fromHsvF(0.67 * (1.0 - i / 255.0), 0.85, 0.35 + 0.65 * i / 255.0).rgb();
        }
        return table;
    }();
    return colours;
}

} // namespace

namespace PixelConverter {

bool Convert(const RawPicture& picture, DisplayFrame& frame)
{
    const int bytesPerPixel = BytesPerPixel(picture.format);
    if (!Fits(picture, bytesPerPixel)) {
        return false;
    }
    for (const BayerLayout& layout : BayerLayouts) {
        if (picture.format == layout.format) {
            Demosaic(picture, layout.redIndex, layout.blueIndex, frame);
            return true;
        }
    }
    switch (picture.format) {
    case PixelFormat::Mono8:
        CopyLines(picture, 1, QImage::Format_Grayscale8, frame);
        return true;
    case PixelFormat::Mono10:
    case PixelFormat::Mono12:
    case PixelFormat::Mono14:
    case PixelFormat::Mono16:
        ConvertSixteenBit(picture, nullptr, frame);
        return true;
    case PixelFormat::RGB8:
        CopyLines(picture, 3, QImage::Format_RGB888, frame);
        return true;
    case PixelFormat::BGR8:
        CopyLines(picture, 3, QImage::Format_BGR888, frame);
        return true;
    default:
        return false;
    }
}

bool ConvertRange(const RawPicture& picture, DisplayFrame& frame)
{
    if (BytesPerPixel(picture.format) != 2 || !Fits(picture, 2)) {
        return false;
    }
    ConvertSixteenBit(picture, &HeightColours(), frame);
    return true;
}

} // namespace PixelConverter
