// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/MutedCriticals.h"

#include <glib.h>

namespace shm {

namespace {

constexpr char domain[] = "GLib-GIO";

// A property of the thread and not of the handler: GLib calls the handler that any thread installed last.
thread_local bool isMuted = false;

void handle(char const* of, GLogLevelFlags level, char const* message, void* data) {
    if (!isMuted) {
        g_log_default_handler(of, level, message, data);
    }
}

} // namespace

MutedCriticals::MutedCriticals()
    : handler_(g_log_set_handler(domain, static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_FLAG_FATAL),
                                 handle, nullptr)) {
    isMuted = true;
}

MutedCriticals::~MutedCriticals() {
    isMuted = false;
    g_log_remove_handler(domain, handler_);
}

} // namespace shm
