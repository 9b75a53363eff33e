#include "genapi/IntegerText.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

namespace GenApi_3_4 {

namespace {

bool AllDigits(const std::string& text, int base)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [base](char c) {
        return base == 16 ? std::isxdigit(static_cast<unsigned char>(c)) != 0
                          : std::isdigit(static_cast<unsigned char>(c)) != 0;
    });
}

bool ParseDecimal(const std::string& text, int64_t& value)
{
    char* end = nullptr;
    errno = 0;
    const long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (end == text.c_str() || *end != '\0' || errno == ERANGE) {
        return false;
    }
    value = parsed;
    return true;
}

// Up to 64 bits; above INT64_MAX the bits are kept, so that ToString of a negative value reads back.
bool ParseHexadecimal(const std::string& digits, uint64_t& bits)
{
    if (!AllDigits(digits, 16) || digits.size() > 16) {
        return false;
    }
    bits = std::strtoull(digits.c_str(), nullptr, 16);
    return true;
}

// count bytes written as numbers in base, separated by separator, most significant first.
bool ParseByteGroups(const std::string& text, char separator, int count, int base, uint64_t& bits)
{
    bits = 0;
    std::size_t start = 0;
    for (int group = 0; group < count; ++group) {
        const std::size_t end = text.find(separator, start);
        const bool last = group + 1 == count;
        if ((end == std::string::npos) != last) {
            return false;
        }
        const std::string digits = text.substr(start, last ? std::string::npos : end - start);
        if (!AllDigits(digits, base) || digits.size() > (base == 16 ? 2u : 3u)) {
            return false;
        }
        const unsigned long byte = std::strtoul(digits.c_str(), nullptr, base);
        if (byte > 0xFF) {
            return false;
        }
        bits = bits << 8 | byte;
        start = end + 1;
    }
    return true;
}

unsigned ByteOf(uint64_t bits, int index)
{
    return static_cast<unsigned>((bits >> (8 * index)) & 0xFF);
}

} // namespace

std::string FormatInteger(int64_t value, ERepresentation representation)
{
    const auto bits = static_cast<uint64_t>(value);
    char text[32];
    switch (representation) {
    case HexNumber:
        std::snprintf(text, sizeof text, "0x%" PRIx64, bits);
        return text;
    case IPV4Address:
        std::snprintf(text, sizeof text, "%u.%u.%u.%u", ByteOf(bits, 3), ByteOf(bits, 2), ByteOf(bits, 1),
                      ByteOf(bits, 0));
        return text;
    case MACAddress:
        std::snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", ByteOf(bits, 5), ByteOf(bits, 4),
                      ByteOf(bits, 3), ByteOf(bits, 2), ByteOf(bits, 1), ByteOf(bits, 0));
        return text;
    default:
        return std::to_string(value);
    }
}

bool ParseInteger(const std::string& text, ERepresentation representation, int64_t& value)
{
    uint64_t bits = 0;
    bool parsed = false;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        parsed = ParseHexadecimal(text.substr(2), bits);
    } else if (representation == IPV4Address && text.find('.') != std::string::npos) {
        parsed = ParseByteGroups(text, '.', 4, 10, bits);
    } else if (representation == MACAddress && text.find(':') != std::string::npos) {
        parsed = ParseByteGroups(text, ':', 6, 16, bits);
    } else {
        return ParseDecimal(text, value);
    }
    if (parsed) {
        value = static_cast<int64_t>(bits);
    }
    return parsed;
}

} // namespace GenApi_3_4
