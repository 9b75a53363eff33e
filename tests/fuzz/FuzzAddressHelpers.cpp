// The dotted-address helpers: the first byte is the delimiter StringSplit cuts the rest at, whose lines give two
// address/mask pairs. The pieces join back into the text; a network part is empty or an address.
#include <arpa/inet.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzExpect.h"
#include "device/DeviceManager.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const char delimiter = static_cast<char>(data[0]);
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);

    std::string joined;
    for (const std::string& piece : DeviceManager::StringSplit(text, delimiter))
        joined += piece + delimiter;
    // A trailing delimiter adds no empty piece; an empty text gives none.
    const std::string expected = text.empty() || text.back() == delimiter ? text : text + delimiter;
    FuzzExpect(joined == expected, "the pieces join back into the text");

    std::vector<std::string> fields = DeviceManager::StringSplit(text, '\n');
    fields.resize(4);
    DeviceManager::IsNetworkSameSegment(fields[0], fields[1], fields[2], fields[3]);
    DeviceManager::IsNetworkSameSegment(fields[2], fields[3], fields[0], fields[1]);
    for (std::size_t address = 0; address < 4; address += 2) {
        const std::string segment = DeviceManager::GetNetworkSegment(fields[address], fields[address + 1]);
        in_addr parsed{};
        // inet_pton takes exactly four decimal numbers from 0 to 255, without leading zeros.
        FuzzExpect(segment.empty() || inet_pton(AF_INET, segment.c_str(), &parsed) == 1,
                   "a network part is four numbers from 0 to 255");
    }
    return 0;
}
