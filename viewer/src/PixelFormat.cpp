#include "PixelFormat.h"

namespace PixelFormat {

QString Name(std::uint64_t format)
{
    switch (format) {
    case Mono8:
        return "Mono8";
    case Mono10:
        return "Mono10";
    case Mono12:
        return "Mono12";
    case Mono14:
        return "Mono14";
    case Mono16:
        return "Mono16";
    case BayerGR8:
        return "BayerGR8";
    case BayerRG8:
        return "BayerRG8";
    case BayerGB8:
        return "BayerGB8";
    case BayerBG8:
        return "BayerBG8";
    case RGB8:
        return "RGB8";
    case BGR8:
        return "BGR8";
    default:
        return QString("0x%1").arg(format, 8, 16, QChar('0'));
    }
}

} // namespace PixelFormat
