// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Smart pointers for what GLib allocates.
///
/// Threads: reentrant.
#pragma once

#include <glib-object.h>
#include <glib.h>

#include <memory>

namespace shm {

/// Frees an error or a text.
struct GLibRelease {
    /// @param error not null
    void operator()(GError* error) const { g_error_free(error); }
    /// @param text not null
    void operator()(char* text) const { g_free(text); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

/// Owns a GError.
using GErrorPtr = std::unique_ptr<GError, GLibRelease>;
/// Owns a text that GLib allocated.
using GStringPtr = std::unique_ptr<char, GLibRelease>;
using GVariantPtr = std::unique_ptr<GVariant, GLibRelease>;

/// Gives up one reference to a GObject.
struct GObjectRelease {
    /// @param object a GObject of any class, not null
    void operator()(void* object) const { g_object_unref(object); }
};

/// Owns one reference to a GObject.
template <typename Object>
using GObjectPtr = std::unique_ptr<Object, GObjectRelease>;

} // namespace shm
