// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What all visits of one thread share.
#pragma once

#include "reader/IQelSharedMemoryVisitor.h"
#include "reader/PositionStack.h"

#include <memory>

namespace shm {

/// A visitor that was replaced during its own callback, in a list of such visitors.
struct RetiredVisitor {
    std::unique_ptr<IQelSharedMemoryVisitor> visitor; ///< to destroy after the callback
    std::unique_ptr<RetiredVisitor> next;             ///< the list's next element
};

/// What the visits of a thread need. It belongs to the thread and not to the reader, so that several threads may
/// visit with one reader at once.
///
/// Threads: thread-bound to the visiting thread.
class VisitsOfThread {
public:
    /// @return the calling thread's object
    static VisitsOfThread& get();

    constexpr VisitsOfThread() = default;
    VisitsOfThread(VisitsOfThread const&) = delete;
    VisitsOfThread& operator=(VisitsOfThread const&) = delete;

    /// @return the thread's stack, freed at the thread's end
    /// @throws std::bad_alloc or std::system_error when its release cannot be arranged
    PositionStack& positions() {
        if (!isReleasedAtEnd_) {
            releaseAtEnd();
        }
        return positions_;
    }

    /// @return whether a visitor's callback runs on this thread
    bool isInCallback() const { return callbacks_ != 0; }

    /// Destroys a visitor: at once, or when no callback runs on this thread any more.
    /// @param visitor to destroy
    void retire(std::unique_ptr<RetiredVisitor> visitor);

    /// Lives while a visitor's callback runs.
    class Callback {
    public:
        /// @param visits the calling thread's object
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

    /// Called at the end of each thread except the last. A visit after that, from a destructor of thread-local
    /// data, registers again.
    static void release(void* visitsOfThread);
    void destroyRetired();

    PositionStack positions_;
    RetiredVisitor* retired_ = nullptr; // owned; a plain pointer, so that the class needs no destructor
    unsigned int callbacks_ = 0;        // number of running callbacks, one inside the other
    bool isReleasedAtEnd_ = false;      // whether the thread's end will free the memory
};

} // namespace shm
