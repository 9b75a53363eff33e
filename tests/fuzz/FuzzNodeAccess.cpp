// The node-access functions on the GenApi tests' node map with input "name\nvalue" (no newline: all name): every
// call answers a documented code, and a readable integer node reports a value inside its own range.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "FuzzExpect.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"
#include "support/common/TextFile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const std::unique_ptr<GenApi_3_4::INodeMap> nodeMap =
        GenApi_3_4::CreateNodeMapFromXml(ReadTextFile(VB3_TEST_DATA_DIR "/genapi_features.xml"), "FuzzDevice");
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = input.find('\n');
    const std::string name = input.substr(0, newline);
    const std::string value = newline == std::string::npos ? std::string() : input.substr(newline + 1);

    std::string read, message, current, min, max, inc;
    std::vector<int> codes = {Utilities::GetNodeValue(nodeMap.get(), name, read, message),
                              Utilities::SetNodeValue(nodeMap.get(), name, value, message),
                              Utilities::GetNodeValue(nodeMap.get(), name, read, message)};
    codes.push_back(Utilities::GetIntNodeInfo(nodeMap.get(), name, current, min, max, inc, message));
    for (int code : codes)
        FuzzExpect(std::set<int>{0, -4, -5, -6, -7, -8, -9}.count(code) == 1, "every call answers a documented code");
    if (codes.back() == 0) {
        const auto isDecimal = [](const std::string& text) { return std::to_string(std::atoll(text.c_str())) == text; };
        FuzzExpect(isDecimal(current) && isDecimal(min) && isDecimal(max) && isDecimal(inc),
                   "integer information is decimal text");
        const long long number = std::atoll(current.c_str());
        FuzzExpect(std::atoll(min.c_str()) <= number && number <= std::atoll(max.c_str()),
                   "an integer stays inside its range");
    }
    return 0;
}
