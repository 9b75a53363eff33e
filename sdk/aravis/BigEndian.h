// Big-endian fields of device data (GVCP packets, GigE Vision chunk trailers).
#pragma once

#include <cstdint>

namespace ZYLGENICAM {

inline uint16_t ReadBigEndian16(const uint8_t* bytes)
{
    return uint16_t((bytes[0] << 8) | bytes[1]);
}

inline uint32_t ReadBigEndian32(const uint8_t* bytes)
{
    return (uint32_t(bytes[0]) << 24) | (uint32_t(bytes[1]) << 16) | (uint32_t(bytes[2]) << 8) | uint32_t(bytes[3]);
}

inline void WriteBigEndian32(uint8_t* bytes, uint32_t value)
{
    bytes[0] = uint8_t(value >> 24);
    bytes[1] = uint8_t(value >> 16);
    bytes[2] = uint8_t(value >> 8);
    bytes[3] = uint8_t(value);
}

} // namespace ZYLGENICAM
