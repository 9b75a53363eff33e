#include "genapi/ArvRegisterNode.h"

#include <arv.h>

#include <mutex>
#include <string>

#include "genapi/ArvFloatNode.h"
#include "genapi/ArvIntegerNode.h"
#include "genapi/ArvNodeMap.h"
#include "genapi/ArvStringNode.h"
#include "genapi/GCException.h"

namespace GenApi_3_4 {

template <class ValueNode>
void ArvRegisterNode<ValueNode>::CheckBuffer(const void* buffer, int64_t length, const char* operation)
{
    if (buffer == nullptr) {
        this->template Throw<GenICam_3_4::InvalidArgumentException>("No buffer given.", "InvalidArgumentException",
                                                                    operation);
    }
    const int64_t registerLength = GetLength();
    if (length != registerLength) {
        this->template Throw<GenICam_3_4::OutOfRangeException>("Buffer of " + std::to_string(length) +
                                                                   " bytes for a register of " +
                                                                   std::to_string(registerLength) + " bytes.",
                                                               "OutOfRangeException", operation);
    }
}

template <class ValueNode>
void ArvRegisterNode<ValueNode>::Set(const uint8_t* pBuffer, int64_t Length, bool Verify)
{
    const ArvNodeMap::Lock lock(this->NodeMap().Mutex());
    if (Verify) {
        this->RequireWritable("Set");
    }
    CheckBuffer(pBuffer, Length, "Set");
    this->CallArv("Set", [&](GError** e) {
        arv_gc_register_set(ARV_GC_REGISTER(this->FeatureNode()), pBuffer, static_cast<guint64>(Length), e);
    });
}

template <class ValueNode>
void ArvRegisterNode<ValueNode>::Get(uint8_t* pBuffer, int64_t Length, bool /*Verify*/, bool IgnoreCache)
{
    const ArvNodeMap::Lock lock(this->NodeMap().Mutex());
    // As in GenApi, readability is checked whatever Verify says.
    this->RequireReadable("Get");
    CheckBuffer(pBuffer, Length, "Get");
    this->ReadArv("Get", IgnoreCache, [&](GError** e) {
        arv_gc_register_get(ARV_GC_REGISTER(this->FeatureNode()), pBuffer, static_cast<guint64>(Length), e);
    });
}

template <class ValueNode>
int64_t ArvRegisterNode<ValueNode>::GetLength(bool /*Verify*/)
{
    const ArvNodeMap::Lock lock(this->NodeMap().Mutex());
    return static_cast<int64_t>(this->CallArv(
        "GetLength", [&](GError** e) { return arv_gc_register_get_length(ARV_GC_REGISTER(this->FeatureNode()), e); }));
}

template <class ValueNode>
int64_t ArvRegisterNode<ValueNode>::GetAddress(bool /*Verify*/)
{
    const ArvNodeMap::Lock lock(this->NodeMap().Mutex());
    return static_cast<int64_t>(this->CallArv("GetAddress", [&](GError** e) {
        return arv_gc_register_get_address(ARV_GC_REGISTER(this->FeatureNode()), e);
    }));
}

template class ArvRegisterNode<ArvNode>;
template class ArvRegisterNode<ArvIntegerNode>;
template class ArvRegisterNode<ArvFloatNode>;
template class ArvRegisterNode<ArvStringNode>;

} // namespace GenApi_3_4
