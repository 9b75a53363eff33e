#pragma once

#include <cstdint>
#include <string>

#include "genapi/Types.h"

namespace GenApi_3_4 {

// Integer values as GenApi's ToString writes them: "0x" and lowercase hexadecimal for HexNumber, dotted
// decimal for IPV4Address (low 32 bits), colon-separated hexadecimal for MACAddress (low 48 bits), decimal
// otherwise.
std::string FormatInteger(int64_t value, ERepresentation representation);

// Reads what FormatInteger writes: decimal (a leading zero is no octal prefix), hexadecimal after "0x" whatever
// the representation, and the address forms of IPV4Address and MACAddress. False when the text is none of these.
bool ParseInteger(const std::string& text, ERepresentation representation, int64_t& value);

} // namespace GenApi_3_4
