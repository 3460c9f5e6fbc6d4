// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Owners for what GLib hands out.
#pragma once

#include <gio/gio.h>
#include <glib-unix.h>

#include <functional>
#include <memory>
#include <utility>

namespace qel::tools {

struct GObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using GObjectPtr = std::unique_ptr<Object, GObjectRelease>;

struct GErrorRelease {
    void operator()(GError* error) const { g_error_free(error); }
};
using GErrorPtr = std::unique_ptr<GError, GErrorRelease>;

struct GMainLoopRelease {
    void operator()(GMainLoop* loop) const { g_main_loop_unref(loop); }
};
using GMainLoopPtr = std::unique_ptr<GMainLoop, GMainLoopRelease>;

/// Calls back from the default main context: every so many ms, at each of a signal, or when a descriptor can
/// be read. Ends with the object. The callback must not throw.
///
/// Threads: bound to the thread that runs the default main context.
class Source {
public:
    using Callback = std::function<void()>;

    static Source everyMs(unsigned interval, Callback callback) {
        return {std::move(callback), [&](Callback* call) {
                    return g_timeout_add(interval, &onTime, call);
                }};
    }
    static Source onSignal(int number, Callback callback) {
        return {std::move(callback), [&](Callback* call) {
                    return g_unix_signal_add(number, &onTime, call);
                }};
    }
    static Source onReadable(int descriptor, Callback callback) {
        return {std::move(callback), [&](Callback* call) {
                    return g_unix_fd_add(descriptor, G_IO_IN, &onInput, call);
                }};
    }

    ~Source() {
        if (callback_) {
            g_source_remove(id_);
        }
    }
    Source(Source&& other) noexcept = default;
    Source& operator=(Source&& other) = delete;
    Source(Source const&) = delete;
    Source& operator=(Source const&) = delete;

private:
    template <typename Add>
    Source(Callback callback, Add add)
        : callback_(std::make_unique<Callback>(std::move(callback))),
          id_(add(callback_.get())) {}

    static gboolean onTime(gpointer callback) {
        (*static_cast<Callback*>(callback))();
        return G_SOURCE_CONTINUE;
    }
    static gboolean onInput(gint /*descriptor*/, GIOCondition /*condition*/, gpointer callback) {
        return onTime(callback);
    }

    std::unique_ptr<Callback> callback_; // null once moved from
    guint id_;
};

} // namespace qel::tools
