// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The values of a point, one after the other, in place.
#pragma once

#include "region/LoadLink.h"
#include "region/QelExport.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace shm {

/// The values of a point, in the order of their chain: `for (auto const& value : point.values())`. Nothing is virtual and
/// nothing is allocated.
///
/// Values nearly always lie side by side, in their order. The positions of such values are collected before the first of
/// them is shown, and so is the link behind them, up to MV_COUNT values in all: so a cyclic chain ends. A position out
/// of the table ends the chain. Later changes of these links have no effect; a slot that was removed or reused meanwhile
/// is shown with its content.
///
/// The members belong to the binary interface, because programs contain the code below.
///
/// Threads: reentrant. While the writer changes a slot, an access may see a mix of old and new fields.
class QelShmValueRange {
public:
    /// Goes over the values; valid while the region is mapped. Meets the requirements of an input iterator.
    ///
    /// Threads: reentrant.
    class Iterator {
    public:
        /// @{
        /// For std::iterator_traits.
        using iterator_category = std::input_iterator_tag;
        using value_type = QelShmMVal;
        using difference_type = std::ptrdiff_t;
        using pointer = QelShmMVal const*;
        using reference = QelShmMVal const&;
        /// @}

        /// The end of every range.
        Iterator() = default;

        /// @return the value
        reference operator*() const { return value_; }
        /// @return the value
        pointer operator->() const { return &value_; }

        /// Goes on to the next value.
        /// @return this iterator
        Iterator& operator++() {
            auto const* const next = value_.operator->() + 1;
            if (next != end_) {
                value_ = QelShmMVal(next);
            } else {
                *this = next_ < MV_COUNT ? behindRun() : Iterator();
            }
            return *this;
        }
        /// Goes on to the next value.
        /// @return an iterator at the former value
        Iterator operator++(int) { // NOLINT(cert-dcl21-cpp): a const result cannot be moved from
            auto const former = *this;
            ++*this;
            return former;
        }

        /// @param left  an iterator
        /// @param right an iterator of the same range, or the end
        /// @return whether both are at the same value, or at the end
        friend bool operator==(Iterator const& left, Iterator const& right) {
            return left.value_.operator->() == right.value_.operator->();
        }
        /// @param left  an iterator
        /// @param right an iterator of the same range, or the end
        /// @return whether they are at different values
        friend bool operator!=(Iterator const& left, Iterator const& right) { return !(left == right); }

    private:
        friend class QelShmValueRange;

        Iterator(record::QelShmMVal const* slots, std::uint32_t first, std::uint32_t end, std::uint32_t next,
                 std::uint32_t left)
            : value_(slots + first),
              end_(slots + end),
              slots_(slots),
              first_(first),
              next_(next),
              left_(left) {}

        /// Collects the slots behind those that lie side by side.
        Iterator behindRun() const {
            auto const end = static_cast<std::uint32_t>(end_ - slots_);
            return nextRun(slots_, next_, left_ - (end - first_));
        }

        QelShmMVal value_;
        record::QelShmMVal const* end_ = nullptr; // behind the last of the slots side by side
        record::QelShmMVal const* slots_ = nullptr;
        std::uint32_t first_ = 0;          // position of the first of them
        std::uint32_t next_ = NO_POSITION; // where the chain goes on behind them
        std::uint32_t left_ = 0;           // how many values the chain may have from the first of them on
    };

    /// Reads nothing yet.
    /// @param region the mapped region
    /// @param first  position of the first value; MV_COUNT and above give an empty range
    QelShmValueRange(record::Region const& region, std::uint32_t first)
        : slots_(region.values),
          first_(first) {}

    /// Collects the values side by side.
    /// @return an iterator at the first value
    Iterator begin() const {
        if (first_ <= MV_COUNT - lookAhead) {
            return firstRun(slots_, first_, std::make_index_sequence<lookAhead>());
        }
        return first_ < MV_COUNT ? nextRun(slots_, first_, MV_COUNT) : Iterator();
    }
    /// @return the end
    Iterator end() const { return {}; }

private:
    /// How many links are compared without a call.
    static constexpr std::uint32_t lookAhead = 12;

    /// Collects the slots side by side.
    template <std::size_t... Index>
    static Iterator firstRun(record::QelShmMVal const* slots, std::uint32_t first,
                             std::index_sequence<Index...> /*indexes*/) {
        auto const* const slot = slots + first;
        auto next = NO_POSITION;
        auto following = first;
        bool const isLonger = ((following = first + static_cast<std::uint32_t>(Index) + 1,
                                next = loadLink(slot[Index].next), next == following) &&
                               ...);
        if (isLonger) {
            return nextRun(slots, first, MV_COUNT);
        }
        return {slots, first, following, next, MV_COUNT};
    }

    /// Collects the slots side by side from a position of the table on, at most left.
    QEL_EXPORT static Iterator nextRun(record::QelShmMVal const* slots, std::uint32_t first,
                                       std::uint32_t left);

    record::QelShmMVal const* slots_;
    std::uint32_t first_;
};

} // namespace shm
