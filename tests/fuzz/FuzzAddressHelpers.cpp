// The dotted-address helpers on arbitrary text. The first byte is the
// delimiter StringSplit cuts the rest at; the rest, cut at newlines, gives the
// two address/mask pairs (missing strings are empty). Nothing crashes, the
// pieces join back into the text, and a network part is empty or four numbers
// from 0 to 255.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzExpect.h"
#include "device/DeviceManager.h"

namespace {

std::string Joined(const std::vector<std::string>& pieces, char delimiter)
{
    std::string text;
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        if (index > 0)
            text += delimiter;
        text += pieces[index];
    }
    return text;
}

bool IsDottedQuad(const std::string& text)
{
    const std::vector<std::string> pieces = DeviceManager::StringSplit(text, '.');
    if (pieces.size() != 4 || text.back() == '.')
        return false;
    for (const std::string& piece : pieces) {
        if (piece.empty() || piece.size() > 3 || piece.find_first_not_of("0123456789") != std::string::npos ||
            std::stoi(piece) > 255 || (piece.size() > 1 && piece[0] == '0'))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const char delimiter = static_cast<char>(data[0]);
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);

    const std::vector<std::string> pieces = DeviceManager::StringSplit(text, delimiter);
    // A trailing delimiter adds no empty piece; an empty text gives none.
    const bool trailingDelimiter = !text.empty() && text.back() == delimiter;
    FuzzExpect(Joined(pieces, delimiter) == (trailingDelimiter ? text.substr(0, text.size() - 1) : text),
               "the pieces join back into the text");
    FuzzExpect(!text.empty() || pieces.empty(), "an empty text gives no piece");

    std::vector<std::string> fields = DeviceManager::StringSplit(text, '\n');
    fields.resize(4);
    DeviceManager::IsNetworkSameSegment(fields[0], fields[1], fields[2], fields[3]);
    DeviceManager::IsNetworkSameSegment(fields[2], fields[3], fields[0], fields[1]);
    for (std::size_t address = 0; address < 4; address += 2) {
        const std::string segment = DeviceManager::GetNetworkSegment(fields[address], fields[address + 1]);
        FuzzExpect(segment.empty() || IsDottedQuad(segment), "a network part is four numbers from 0 to 255");
    }
    return 0;
}
