// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/MainLoopThread.h"

#include <glib.h>

namespace qel::test {

MainLoopThread::MainLoopThread(GMainContext* context)
    : context_(g_main_context_ref(context != nullptr ? context : g_main_context_default())),
      running_(true) {
    thread_ = std::thread([this] {
        g_main_context_push_thread_default(context_);
        while (running_) {
            g_main_context_iteration(context_, TRUE);
        }
        g_main_context_pop_thread_default(context_);
    });
}

MainLoopThread::~MainLoopThread() {
    running_ = false;
    g_main_context_wakeup(context_);
    thread_.join();
    g_main_context_unref(context_);
}

} // namespace qel::test
