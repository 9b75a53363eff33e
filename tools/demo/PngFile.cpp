#include "PngFile.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <sstream>
#include <utility>

namespace {

// PFNC codes of the formats handled by name.
constexpr std::uint64_t Mono8 = 0x01080001;
constexpr std::uint64_t BayerGR8 = 0x01080008;
constexpr std::uint64_t BayerBG8 = 0x0108000B;
constexpr std::uint64_t Mono10 = 0x01100003;
constexpr std::uint64_t Mono12 = 0x01100005;
constexpr std::uint64_t Mono14 = 0x01100025;
constexpr std::uint64_t Mono16 = 0x01100007;
constexpr std::uint64_t Coord3DC16 = 0x011000B8;
constexpr std::uint64_t RGB8 = 0x02180014;
constexpr std::uint64_t BGR8 = 0x02180015;

// How a frame is written: PNG colour type, bits per sample and, for 10- to
// 14-bit mono, the shift that brings the samples to full 16-bit scale.
struct Layout {
    int colorType = PNG_COLOR_TYPE_GRAY;
    int bitDepth = 8;
    int channels = 1;
    int shift = 0;
    bool swapRedBlue = false;
};

bool ChooseLayout(const Frame& frame, Layout& layout, std::string& error)
{
    switch (frame.pixelFormat) {
    case Mono8:
        return true;
    case Mono10:
        layout = {PNG_COLOR_TYPE_GRAY, 16, 1, 6, false};
        return true;
    case Mono12:
        layout = {PNG_COLOR_TYPE_GRAY, 16, 1, 4, false};
        return true;
    case Mono14:
        layout = {PNG_COLOR_TYPE_GRAY, 16, 1, 2, false};
        return true;
    case Mono16:
    case Coord3DC16:
        layout = {PNG_COLOR_TYPE_GRAY, 16, 1, 0, false};
        return true;
    case RGB8:
        layout = {PNG_COLOR_TYPE_RGB, 8, 3, 0, false};
        return true;
    case BGR8:
        layout = {PNG_COLOR_TYPE_RGB, 8, 3, 0, true};
        return true;
    default:
        break;
    }
    if (frame.pixelFormat >= BayerGR8 && frame.pixelFormat <= BayerBG8) {
        return true; // raw Bayer mosaic shown as gray
    }
    const std::uint64_t pixels = frame.width * frame.height;
    if (pixels != 0 && frame.data.size() == pixels) {
        return true;
    }
    if (pixels != 0 && frame.data.size() == 2 * pixels) {
        layout = {PNG_COLOR_TYPE_GRAY, 16, 1, 0, false};
        return true;
    }
    if (pixels != 0 && frame.data.size() == 3 * pixels) {
        layout = {PNG_COLOR_TYPE_RGB, 8, 3, 0, false};
        return true;
    }
    std::ostringstream text;
    text << "unsupported pixel format 0x" << std::hex << frame.pixelFormat;
    error = text.str();
    return false;
}

// PNG rows in the file's byte order: 16-bit samples big-endian, RGB order.
std::vector<unsigned char> ConvertRows(const Frame& frame, const Layout& layout)
{
    const std::size_t samples = frame.width * frame.height * layout.channels;
    std::vector<unsigned char> out(samples * (layout.bitDepth / 8));
    if (layout.bitDepth == 16) {
        for (std::size_t i = 0; i < samples; ++i) {
            unsigned value = frame.data[2 * i] | (frame.data[2 * i + 1] << 8);
            value = (value << layout.shift) & 0xFFFF;
            out[2 * i] = static_cast<unsigned char>(value >> 8);
            out[2 * i + 1] = static_cast<unsigned char>(value & 0xFF);
        }
        return out;
    }
    std::copy(frame.data.begin(), frame.data.begin() + static_cast<std::ptrdiff_t>(samples), out.begin());
    if (layout.swapRedBlue) {
        for (std::size_t i = 0; i + 2 < samples; i += 3) {
            std::swap(out[i], out[i + 2]);
        }
    }
    return out;
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// libpng reports errors by longjmp; nothing with a destructor is created
// between setjmp and the end of this function.
bool WriteRows(std::FILE* file, const Frame& frame, const Layout& layout, std::vector<png_bytep>& rows)
{
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    if (png == nullptr) {
        return false;
    }
    png_infop info = png_create_info_struct(png);
    if (info == nullptr || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(frame.width), static_cast<png_uint_32>(frame.height),
                 layout.bitDepth, layout.colorType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

} // namespace

bool WritePng(const Frame& frame, const std::string& path, std::string& error)
{
    if (frame.width == 0 || frame.height == 0 || frame.width > 0x7FFFFFFF || frame.height > 0x7FFFFFFF) {
        error = "the frame has no usable size";
        return false;
    }
    Layout layout;
    if (!ChooseLayout(frame, layout, error)) {
        return false;
    }
    const std::size_t rowBytes = frame.width * layout.channels * (layout.bitDepth / 8);
    if (frame.data.size() < rowBytes * frame.height) {
        error = "the frame carries " + std::to_string(frame.data.size()) + " bytes where " +
                std::to_string(frame.width) + " x " + std::to_string(frame.height) + " pixels need " +
                std::to_string(rowBytes * frame.height) + " (chunk data rather than a picture?)";
        return false;
    }
    std::vector<unsigned char> pixels = ConvertRows(frame, layout);
    std::vector<png_bytep> rows(frame.height);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        rows[y] = pixels.data() + y * rowBytes;
    }
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wb"));
    if (!file) {
        error = "cannot create " + path;
        return false;
    }
    if (!WriteRows(file.get(), frame, layout, rows)) {
        error = "libpng could not encode the frame";
        return false;
    }
    return true;
}
