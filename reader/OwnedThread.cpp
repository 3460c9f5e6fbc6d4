// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/OwnedThread.h"

#include "region/ProcessMark.h"

#include <atomic>

namespace shm {

namespace {

/// List of the abandoned threads, so that leak detectors find them referenced.
std::atomic<OwnedThread*> abandoned{nullptr};

} // namespace

OwnedThread::OwnedThread(std::function<void()> const& body) : process_(processMark()), thread_(body) {}

bool OwnedThread::isOfThisProcess() const noexcept {
    return process_ == processMark();
}

void OwnedThread::abandon(std::unique_ptr<OwnedThread> foreign) noexcept {
    foreign->nextAbandoned_ = abandoned;
    abandoned = foreign.release();
}

} // namespace shm
