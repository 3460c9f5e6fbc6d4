// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/Thread.h"

#include "reader/OwnedThread.h"
#include "reader/joinOrReport.h"

#include <boost/thread/thread_only.hpp>

#include <iostream>
#include <utility>

// Part of the binary interface, also where pointers have 32 bits.
static_assert(sizeof(Thread) == 3 * sizeof(void*));

namespace {

void abandonAfterFork(std::unique_ptr<shm::OwnedThread>& thread, std::atomic<bool>& running) noexcept {
    if (thread && !thread->isOfThisProcess()) {
        shm::OwnedThread::abandon(std::move(thread));
        running = false;
    }
}

} // namespace

Thread::Thread() : running_(false) {}

Thread::~Thread() {
    abandonAfterFork(thread_, running_);
    detach();
}

void Thread::preStop() {}

void Thread::postStop() {}

void Thread::start() {
    abandonAfterFork(thread_, running_);
    if (thread_) {
        std::cout << "Already started" << std::endl;
        return;
    }
    running_ = true;
    thread_ = std::make_unique<shm::OwnedThread>([this] { run(); });
}

void Thread::join() {
    abandonAfterFork(thread_, running_);
    if (running_) {
        preStop();
        running_ = false;
        if (!thread_) {
            return;
        }
        thread_->thread().interrupt();
        postStop();
    }
    if (thread_) {
        boost::this_thread::disable_interruption const undisturbed;
        shm::joinOrReport([this] { thread_->thread().join(); });
        detach();
    }
}

void Thread::detach() {
    if (thread_) {
        thread_->thread().detach(); // no effect on a joined thread
        thread_.reset();
    }
}
