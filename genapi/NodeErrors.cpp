#include "genapi/NodeErrors.h"

#include <arv.h>

#include "genapi/GCException.h"

namespace GenApi_3_4 {

std::string DescribeNodeError(const std::string& text, const char* exceptionName, const std::string& nodeName,
                              const char* operation)
{
    return text + " : " + exceptionName + " thrown in node '" + nodeName + "' while calling '" + nodeName + "." +
           operation + "()'";
}

bool ConsumeUndefinedPropertyError(GError* error)
{
    if (error->domain == ARV_GC_ERROR && error->code == ARV_GC_ERROR_PROPERTY_NOT_DEFINED) {
        g_error_free(error);
        return true;
    }
    return false;
}

void ThrowForGError(GError* error, const std::string& nodeName, const char* operation)
{
    const std::string text = error->message != nullptr ? error->message : "Unknown error";
    const GQuark domain = error->domain;
    const int code = error->code;
    g_error_free(error);

    if (domain == ARV_GC_ERROR) {
        switch (code) {
        case ARV_GC_ERROR_OUT_OF_RANGE:
        case ARV_GC_ERROR_INVALID_LENGTH:
            ThrowNodeError<GenICam_3_4::OutOfRangeException>(text, "OutOfRangeException", nodeName, operation);
        case ARV_GC_ERROR_READ_ONLY:
            ThrowNodeError<GenICam_3_4::AccessException>(text, "AccessException", nodeName, operation);
        case ARV_GC_ERROR_ENUM_ENTRY_NOT_FOUND:
        case ARV_GC_ERROR_INVALID_SYNTAX:
            ThrowNodeError<GenICam_3_4::InvalidArgumentException>(text, "InvalidArgumentException", nodeName,
                                                                  operation);
        case ARV_GC_ERROR_SET_FROM_STRING_UNDEFINED:
        case ARV_GC_ERROR_GET_AS_STRING_UNDEFINED:
            ThrowNodeError<GenICam_3_4::LogicalErrorException>(text, "LogicalErrorException", nodeName, operation);
        default:
            break;
        }
    } else if (domain == ARV_DEVICE_ERROR && code == ARV_DEVICE_ERROR_TIMEOUT) {
        ThrowNodeError<GenICam_3_4::TimeoutException>(text, "TimeoutException", nodeName, operation);
    }
    ThrowNodeError<GenICam_3_4::RuntimeException>(text, "RuntimeException", nodeName, operation);
}

} // namespace GenApi_3_4
