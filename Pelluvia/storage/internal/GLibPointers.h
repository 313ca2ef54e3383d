// SPDX-License-Identifier: MIT

#pragma once

#include <glib-object.h>
#include <glib.h>

#include <memory>

/// \file
/// What GLib gives away, in hands that let it go.

namespace pelluvia::storage {

/// Calls a C function with the pointer.
template <auto function>
struct Releasing {
    template <class T>
    void operator()(T *pointer) const noexcept {
        function(pointer);
    }
};

template <class T>
using GObjectPointer = std::unique_ptr<T, Releasing<g_object_unref>>;
template <class T>
using GMemory = std::unique_ptr<T, Releasing<g_free>>;
using GErrorPointer = std::unique_ptr<GError, Releasing<g_error_free>>;
using GKeyFilePointer = std::unique_ptr<GKeyFile, Releasing<g_key_file_unref>>;
using GVariantPointer = std::unique_ptr<GVariant, Releasing<g_variant_unref>>;

} // namespace pelluvia::storage
