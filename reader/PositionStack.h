// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lists of slots that a thread is walking.
#pragma once

#include "region/RegionFields.h"

#include <cstddef>
#include <cstdint>

namespace shm {

/// Memory for the positions of nested lists, the innermost on top. It keeps what it once had, so that walks allocate
/// nothing. Constant-initialised and without a destructor, so that it serves in every phase of a thread's life.
///
/// Threads: belongs to one thread.
class PositionStack {
public:
    constexpr PositionStack() = default;
    PositionStack(PositionStack const&) = delete;
    PositionStack& operator=(PositionStack const&) = delete;

    /// Gives the memory back; no list may live.
    void release();

private:
    friend class PositionList;

    /// The end of what is used, with room for so many more behind it.
    /// @throws std::bad_alloc when there is no memory; nothing changes then
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

/// One list of slots: the positions that its links led to when it was collected, whatever becomes of the links
/// afterwards. Lists are destroyed in the reverse order of their collection, exceptions included.
class PositionList {
public:
    explicit PositionList(PositionStack& stack) : stack_(stack), begin_(stack.used_) {}
    ~PositionList() { stack_.used_ = begin_; }
    PositionList(PositionList const&) = delete;
    PositionList& operator=(PositionList const&) = delete;

    /// Follows the slots' next fields; each link is read once. To be called once, while no younger list lives.
    /// @param slots the table
    /// @param count its size, and the most positions that are collected: a circle ends
    /// @param first position to start at; count and above give an empty list
    /// @throws std::bad_alloc when there is no memory
    template <typename Slot>
    void collect(Slot const* slots, std::uint32_t count, std::uint32_t first) {
        auto* const positions = stack_.roomFor(count);
        auto* end = positions;
        for (auto pos = first; pos < count && end != positions + count; pos = loadLink(slots[pos].next)) {
            *end++ = static_cast<std::uint16_t>(pos);
        }
        stack_.used_ += static_cast<std::size_t>(end - positions);
    }

    /// Places of the list's positions on the stack. endPlace() is good while no younger list lives.
    std::size_t firstPlace() const { return begin_; }
    std::size_t endPlace() const { return stack_.used_; }

    /// The position at a place; good for writing, too.
    std::uint16_t& at(std::size_t place) const { return stack_.positions_[place]; }

private:
    PositionStack& stack_;
    std::size_t begin_;
};

} // namespace shm
