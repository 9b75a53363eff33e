#pragma once

#include "genapi/GCException.h"
#include "genapi/IBase.h"
#include "genapi/IBoolean.h"
#include "genapi/ICategory.h"
#include "genapi/ICommand.h"
#include "genapi/IEnumEntry.h"
#include "genapi/IEnumeration.h"
#include "genapi/IFloat.h"
#include "genapi/IInteger.h"
#include "genapi/INode.h"
#include "genapi/IRegister.h"
#include "genapi/IString.h"
#include "genapi/IValue.h"

namespace GenApi_3_4 {

// Smart pointer that casts a node to one of its interfaces; empty when the node does not offer it.
// It owns nothing: the node map owns the node.
template <class T, class B = IBase>
class CPointer {
public:
    CPointer() noexcept : m_pT(nullptr) {}
    CPointer(B* pB) : m_pT(dynamic_cast<T*>(pB)) {}
    virtual ~CPointer() = default;

    CPointer& operator=(B* pB)
    {
        m_pT = dynamic_cast<T*>(pB);
        return *this;
    }

    operator T*() const { return Checked(); }
    T& operator*() const { return *Checked(); }
    T& operator()() const { return *Checked(); }
    T* operator->() const { return Checked(); }

    bool IsValid() const noexcept { return m_pT != nullptr; }
    operator bool() const noexcept { return m_pT != nullptr; }

    bool operator==(T* pT) const { return m_pT == pT; }
    bool operator==(const CPointer& other) const { return m_pT == other.m_pT; }
    bool operator!=(const CPointer& other) const { return m_pT != other.m_pT; }

protected:
    T* Checked() const
    {
        if (m_pT == nullptr) {
            throw GenICam_3_4::LogicalErrorException("NULL pointer dereferenced", __FILE__, __LINE__);
        }
        return m_pT;
    }

    T* m_pT;
};

using CNodePtr = CPointer<INode>;
using CValuePtr = CPointer<IValue>;
using CIntegerPtr = CPointer<IInteger>;
using CFloatPtr = CPointer<IFloat>;
using CBooleanPtr = CPointer<IBoolean>;
using CStringPtr = CPointer<IString>;
using CCommandPtr = CPointer<ICommand>;
using CEnumerationPtr = CPointer<IEnumeration>;
using CEnumEntryPtr = CPointer<IEnumEntry>;
using CCategoryPtr = CPointer<ICategory>;
using CRegisterPtr = CPointer<IRegister>;

inline bool IsReadable(EAccessMode AccessMode)
{
    return AccessMode == RO || AccessMode == RW;
}
inline bool IsWritable(EAccessMode AccessMode)
{
    return AccessMode == WO || AccessMode == RW;
}
inline bool IsImplemented(EAccessMode AccessMode)
{
    return AccessMode != NI;
}
inline bool IsAvailable(EAccessMode AccessMode)
{
    return AccessMode != NI && AccessMode != NA;
}

inline bool IsReadable(const IBase* p)
{
    return p != nullptr && IsReadable(p->GetAccessMode());
}
inline bool IsWritable(const IBase* p)
{
    return p != nullptr && IsWritable(p->GetAccessMode());
}
inline bool IsImplemented(const IBase* p)
{
    return p != nullptr && IsImplemented(p->GetAccessMode());
}
inline bool IsAvailable(const IBase* p)
{
    return p != nullptr && IsAvailable(p->GetAccessMode());
}

template <class T, class B>
inline bool IsReadable(const CPointer<T, B>& ptr)
{
    return ptr.IsValid() && IsReadable(ptr->GetAccessMode());
}
template <class T, class B>
inline bool IsWritable(const CPointer<T, B>& ptr)
{
    return ptr.IsValid() && IsWritable(ptr->GetAccessMode());
}
template <class T, class B>
inline bool IsImplemented(const CPointer<T, B>& ptr)
{
    return ptr.IsValid() && IsImplemented(ptr->GetAccessMode());
}
template <class T, class B>
inline bool IsAvailable(const CPointer<T, B>& ptr)
{
    return ptr.IsValid() && IsAvailable(ptr->GetAccessMode());
}

} // namespace GenApi_3_4
