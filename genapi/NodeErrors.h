#pragma once

#include <string>

#include "genapi/ArvForward.h"

namespace GenApi_3_4 {

// Descriptions follow GenApi's form: "<text> : <Exception> thrown in node '<node>' while calling
// '<node>.<operation>()'".
std::string DescribeNodeError(const std::string& text, const char* exceptionName, const std::string& nodeName,
                              const char* operation);

template <class Exception>
[[noreturn]] void ThrowNodeError(const std::string& text, const char* exceptionName, const std::string& nodeName,
                                 const char* operation)
{
    throw Exception(DescribeNodeError(text, exceptionName, nodeName, operation));
}

// True (and the error freed) when the error only says that an optional property such as <Min> is absent.
bool ConsumeUndefinedPropertyError(GError* error);

// Frees the error and throws the GenICam exception matching its domain and code.
[[noreturn]] void ThrowForGError(GError* error, const std::string& nodeName, const char* operation);

} // namespace GenApi_3_4
