// The three node-access functions on arbitrary node names and values over the
// GenICam node map of the GenApi tests, built once. The input is "name\nvalue"
// (no newline: all of it is the name, the value is empty). Nothing crashes,
// every call answers with one of the documented codes, and an integer node that
// can be read reports a value inside its own range.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>

#include "FuzzExpect.h"
#include "genapi/NodeMapFactory.h"
#include "node/NodeAccess.h"

namespace {

std::unique_ptr<GenApi_3_4::INodeMap> BuildNodeMap()
{
    std::ifstream file(VB3_TEST_DATA_DIR "/genapi_features.xml", std::ios::binary);
    const std::string xml((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    FuzzExpect(!xml.empty(), "the node map description can be read");
    return GenApi_3_4::CreateNodeMapFromXml(xml, "FuzzDevice");
}

bool IsDocumentedCode(int code)
{
    static const std::set<int> codes = {0, -4, -5, -6, -7, -8, -9};
    return codes.count(code) == 1;
}

bool IsNumber(const std::string& text)
{
    char* end = nullptr;
    std::strtoll(text.c_str(), &end, 10);
    return !text.empty() && *end == '\0';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static const std::unique_ptr<GenApi_3_4::INodeMap> nodeMap = BuildNodeMap();
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t newline = input.find('\n');
    const std::string name = input.substr(0, newline);
    const std::string value = newline == std::string::npos ? std::string() : input.substr(newline + 1);

    std::string read;
    std::string message;
    FuzzExpect(IsDocumentedCode(Utilities::GetNodeValue(nodeMap.get(), name, read, message)),
               "GetNodeValue answers with a documented code");
    FuzzExpect(IsDocumentedCode(Utilities::SetNodeValue(nodeMap.get(), name, value, message)),
               "SetNodeValue answers with a documented code");
    FuzzExpect(IsDocumentedCode(Utilities::GetNodeValue(nodeMap.get(), name, read, message)),
               "GetNodeValue after a write answers with a documented code");

    std::string current;
    std::string min;
    std::string max;
    std::string inc;
    const int code = Utilities::GetIntNodeInfo(nodeMap.get(), name, current, min, max, inc, message);
    FuzzExpect(IsDocumentedCode(code), "GetIntNodeInfo answers with a documented code");
    if (code == 0) {
        FuzzExpect(IsNumber(current) && IsNumber(min) && IsNumber(max) && IsNumber(inc),
                   "integer information is decimal text");
        const long long number = std::stoll(current);
        FuzzExpect(std::stoll(min) <= number && number <= std::stoll(max), "an integer stays inside its range");
    }
    return 0;
}
