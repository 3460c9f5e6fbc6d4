// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the visits of one thread share.
#pragma once

#include "reader/IQelSharedMemoryVisitor.h"
#include "reader/PositionStack.h"

#include <memory>

namespace shm {

/// A visitor that was taken away, in a chain of such.
struct RetiredVisitor {
    std::unique_ptr<IQelSharedMemoryVisitor> visitor;
    std::unique_ptr<RetiredVisitor> next;
};

/// Kept per thread and not per reader, so that several threads may visit by one reader at once.
class VisitsOfThread {
public:
    /// Of the calling thread.
    static VisitsOfThread& get();

    constexpr VisitsOfThread() = default;
    VisitsOfThread(VisitsOfThread const&) = delete;
    VisitsOfThread& operator=(VisitsOfThread const&) = delete;

    /// @throws std::bad_alloc, std::system_error when nothing can be kept for the thread
    PositionStack& positions() {
        if (!isReleasedAtEnd_) {
            releaseAtEnd();
        }
        return positions_;
    }

    /// Whether a visitor is being called by this thread.
    bool isInCallback() const { return callbacks_ != 0; }

    /// Destroys a visitor, at once or when no visitor is being called any more.
    void retire(std::unique_ptr<RetiredVisitor> visitor);

    /// To live while a visitor is called.
    class Callback {
    public:
        explicit Callback(VisitsOfThread& visits) : visits_(visits) { ++visits_.callbacks_; }
        ~Callback() {
            if (--visits_.callbacks_ == 0 && visits_.retired_ != nullptr) {
                visits_.destroyRetired();
            }
        }
        Callback(Callback const&) = delete;
        Callback& operator=(Callback const&) = delete;

    private:
        VisitsOfThread& visits_;
    };

private:
    void releaseAtEnd();

    /// Called at the end of each thread but the last one. A visit that comes later still, from a destructor of the thread's
    /// data, registers again.
    static void release(void* visitsOfThread);
    void destroyRetired();

    PositionStack positions_;
    RetiredVisitor* retired_ = nullptr; // owned; a plain pointer, so that the class needs no destructor
    unsigned int callbacks_ = 0;        // that are running, one inside the other
    bool isReleasedAtEnd_ = false;      // whether the end of the thread is going to give the memory back
};

} // namespace shm
