// Owning holder for GLib/Aravis objects: one reference, dropped with g_object_unref.
#pragma once

#include <glib-object.h>

#include <memory>

namespace ZYLGENICAM {

struct GObjectUnref {
    void operator()(void* object) const
    {
        if (object != nullptr)
            g_object_unref(object);
    }
};

template <class T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

// Takes a new reference on an object someone else owns.
template <class T>
GObjectPtr<T> RefObject(T* object)
{
    if (object != nullptr)
        g_object_ref(object);
    return GObjectPtr<T>(object);
}

} // namespace ZYLGENICAM
