// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Owners of what GLib hands out.
#pragma once

#include <glib-object.h>
#include <glib.h>

#include <memory>

namespace shm {

struct GLibRelease {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(char* text) const { g_free(text); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

using GErrorPtr = std::unique_ptr<GError, GLibRelease>;
using GStringPtr = std::unique_ptr<char, GLibRelease>;
using GVariantPtr = std::unique_ptr<GVariant, GLibRelease>;

/// One reference to a GObject of any class.
struct GObjectRelease {
    void operator()(void* object) const { g_object_unref(object); }
};

template <typename Object>
using GObjectPtr = std::unique_ptr<Object, GObjectRelease>;

} // namespace shm
