// The PFNC pixel formats the viewer draws, and their names.
#pragma once

#include <QString>

#include <cstdint>

namespace PixelFormat {

constexpr std::uint64_t Mono8 = 0x01080001;
constexpr std::uint64_t Mono10 = 0x01100003;
constexpr std::uint64_t Mono12 = 0x01100005;
constexpr std::uint64_t Mono14 = 0x01100025;
constexpr std::uint64_t Mono16 = 0x01100007;
constexpr std::uint64_t BayerGR8 = 0x01080008;
constexpr std::uint64_t BayerRG8 = 0x01080009;
constexpr std::uint64_t BayerGB8 = 0x0108000A;
constexpr std::uint64_t BayerBG8 = 0x0108000B;
constexpr std::uint64_t RGB8 = 0x02180014;
constexpr std::uint64_t BGR8 = 0x02180015;

// "Mono8", ... or the code in hexadecimal.
QString Name(std::uint64_t format);

} // namespace PixelFormat
