// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lists of slots that a thread is visiting.
#pragma once

#include "region/RegionFields.h"

#include <cstddef>
#include <cstdint>

namespace shm {

/// Memory for the positions of nested lists, the innermost on top. It never shrinks, so visits usually allocate
/// nothing. Constant-initialised and without a destructor, so it can be used in every phase of a thread's life.
///
/// Threads: thread-bound to the visiting thread.
class PositionStack {
public:
    constexpr PositionStack() = default;
    PositionStack(PositionStack const&) = delete;
    PositionStack& operator=(PositionStack const&) = delete;

    /// Frees the memory. No PositionList may exist.
    void release();

private:
    friend class PositionList;

    /// Makes room for count more positions and returns the end of the used ones.
    /// @throws std::bad_alloc without memory; nothing changes then
    std::uint16_t* roomFor(std::size_t count) {
        if (capacity_ - used_ < count) {
            grow(count);
        }
        return positions_ + used_;
    }
    void grow(std::size_t count);

    std::uint16_t* positions_ = nullptr;
    std::size_t capacity_ = 0;
    std::size_t used_ = 0;
};

/// One list of slots: the positions to which its links led when it was collected. Later changes of the links have no
/// effect. Lists must be destroyed in the reverse order of their construction.
///
/// Threads: thread-bound to the visiting thread.
class PositionList {
public:
    /// Begins an empty list.
    /// @param stack must outlive the list
    explicit PositionList(PositionStack& stack) : stack_(stack), begin_(stack.used_) {}
    ~PositionList() { stack_.used_ = begin_; }
    PositionList(PositionList const&) = delete;
    PositionList& operator=(PositionList const&) = delete;

    /// Follows the slots' next fields and reads each link once. Call it once, while no later list exists.
    /// @param slots the table
    /// @param count size of the table, and maximum length of the list, which ends a cyclic one
    /// @param first position of the first slot; count and above give an empty list
    /// @throws std::bad_alloc without memory
    template <typename Slot>
    void collect(Slot const* slots, std::uint32_t count, std::uint32_t first) {
        auto* const positions = stack_.roomFor(count);
        auto* end = positions;
        for (auto pos = first; pos < count && end != positions + count; pos = loadLink(slots[pos].next)) {
            *end++ = static_cast<std::uint16_t>(pos);
        }
        stack_.used_ += static_cast<std::size_t>(end - positions);
    }

    /// @return place of the list's first position on the stack
    std::size_t firstPlace() const { return begin_; }
    /// @return place behind the list's last position; valid while no later list exists
    std::size_t endPlace() const { return stack_.used_; }

    /// @param place from firstPlace() up to endPlace()
    /// @return the position at that place
    std::uint16_t& at(std::size_t place) const { return stack_.positions_[place]; }

private:
    PositionStack& stack_;
    std::size_t begin_;
};

} // namespace shm
