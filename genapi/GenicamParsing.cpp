#include "genapi/GenicamParsing.h"

namespace GenApi_3_4 {

std::unique_lock<std::mutex> LockGenicamParsing()
{
    static std::mutex parsing;
    return std::unique_lock<std::mutex>(parsing);
}

} // namespace GenApi_3_4
