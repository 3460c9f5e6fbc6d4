// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// All points of the region, one after the other, in place.
#pragma once

#include "reader/QelShmPoint.h"
#include "region/LoadLink.h"
#include "region/QelExport.h"
#include "region/QelShmRecords.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace shm {

/// All points of the region in the order of a visit: devices, then groups; each point, then its children, sorted by
/// QelShmMPntCmp. Nothing is virtual, nothing is allocated, no lock is taken and no hook or visitor is called:
///
///     double power = 0;
///     for (auto const& point : reader.points()) {
///         for (auto const& value : point.values()) {
///             if (value->key == shm::key::activePower) {
///                 power += value->value;
///             }
///         }
///     }
///
/// @par Changes meanwhile
/// The positions of a list are collected before its first point is shown, those of children behind the values of their
/// parent. So no point is skipped when the writer adds or removes others during the scan. A slot that was removed or
/// reused meanwhile is shown with its content.
///
/// @par Hostile links
/// Positions out of the table end a list. A scan collects at most MP_COUNT points for a list and 2 * MP_COUNT in all,
/// and goes at most MP_COUNT levels deep, so it ends whatever the links are. Points in a circle are shown repeatedly
/// until then, and points behind them may be missing.
///
/// @par Life
/// The range is empty if no region is mapped when it is made. The region must stay mapped while the scan goes on: do not
/// destroy or close the reader. Leaving the loop early is fine. The memory of a scan, about 6 KiB, is the range itself,
/// so scans may be nested and any number of threads may scan with one reader at once.
///
/// A single pass: begin() starts the scan anew, and the range's iterators share its place.
///
/// The members belong to the binary interface, because programs contain the code below.
///
/// Threads: reentrant. Visits, look-ups and rebuilds of the same reader do not disturb a scan. While the writer changes a
/// slot, an access may see a mix of old and new fields.
class QelShmPointRange {
    /// Points whose slots lie side by side; null for none.
    struct Run {
        QelShmMP const* first;
        QelShmMP const* end;
    };

public:
    /// Goes over the points. Valid while its range lives. Meets the requirements of an input iterator.
    ///
    /// Threads: reentrant.
    class Iterator {
    public:
        /// @{
        /// For std::iterator_traits.
        using iterator_category = std::input_iterator_tag;
        using value_type = QelShmPoint;
        using difference_type = std::ptrdiff_t;
        using pointer = QelShmPoint const*;
        using reference = QelShmPoint const&;
        /// @}

        /// The end of every range.
        Iterator() = default;

        /// @return the point
        reference operator*() const { return point_; }
        /// @return the point
        pointer operator->() const { return &point_; }

        /// Goes on to the next point: the first child, else the next sibling, else that of an ancestor.
        /// @return this iterator
        Iterator& operator++() {
            auto const* const current = point_.operator->();
            auto const children = loadLink(current->children);
            point_ = QelShmPoint(current + 1, point_.region_, range_, point_.depth_);
            if (children < MP_COUNT) {
                take(range_->childrenOf(current, children));
            } else if (current + 1 == end_) {
                take(range_->behindRun());
            }
            return *this;
        }
        /// Goes on to the next point.
        /// @return an iterator at the former point
        Iterator operator++(int) { // NOLINT(cert-dcl21-cpp): a const result cannot be moved from
            auto const former = *this;
            ++*this;
            return former;
        }

        /// @param left  an iterator
        /// @param right an iterator of the same range, or the end
        /// @return whether both are at the same point, or at the end
        friend bool operator==(Iterator const& left, Iterator const& right) {
            return left.point_.operator->() == right.point_.operator->();
        }
        /// @param left  an iterator
        /// @param right an iterator of the same range, or the end
        /// @return whether they are at different points
        friend bool operator!=(Iterator const& left, Iterator const& right) { return !(left == right); }

    private:
        friend class QelShmPointRange;

        Iterator(QelShmPointRange* range, Run run) : range_(range) { take(run); }

        void take(Run run) {
            point_ = QelShmPoint(run.first, range_->region_, range_, range_->depth_);
            end_ = run.end;
        }

        QelShmPoint point_;
        QelShmMP const* end_ = nullptr; // behind the last of the slots side by side
        QelShmPointRange* range_ = nullptr;
    };

    /// Reads nothing yet.
    /// @param region the mapped region, null for an empty range
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): what the arrays hold is set before it is read
    explicit QelShmPointRange(record::Region const* region) : region_(region) {}
    QelShmPointRange(QelShmPointRange const&) = delete;
    QelShmPointRange& operator=(QelShmPointRange const&) = delete;

    /// Starts the scan.
    /// @return an iterator at the first point
    Iterator begin() { return {this, firstRun()}; }
    /// @return the end
    Iterator end() { return {}; }

private:
    friend class QelShmPoint;

    /// What is left of a list. Both numbers are positions of slots side by side, or indexes into collected_ with the bit
    /// isCollected.
    struct Level {
        std::uint16_t current; // the point whose descendants are being shown
        std::uint16_t end;
    };
    static constexpr std::uint16_t isCollected = 0x8000;
    static constexpr std::uint32_t mostPoints = 2 * MP_COUNT;

    /// Starts the scan.
    QEL_EXPORT Run firstRun();
    /// Takes the children of a point, or what comes behind it.
    QEL_EXPORT Run childrenOf(QelShmMP const* parent, std::uint32_t first);
    /// Takes what comes behind a run whose last point has no children.
    QEL_EXPORT Run behindRun();
    /// Takes the next top-level list that is not empty.
    Run topLevel();
    /// Goes on with the list of the present level or of a level above it.
    Run goOn();
    /// Takes the children whose list is collected point by point.
    Run each(std::uint32_t first);
    /// Collects a list as the level below the present one; false if the scan may collect no more.
    bool collectEach(std::uint32_t first);
    /// The slots that the present level shows next.
    Run runAt(Level const& level) const;
    QelShmMP const* slotAt(std::uint16_t place) const {
        bool const isIndex = (place & isCollected) != 0;
        return region_->points + (isIndex ? collected_[place ^ isCollected] : place);
    }

    record::Region const* region_;
    std::uint32_t depth_ = 0;    // number of levels
    std::uint32_t left_ = 0;     // how many more points the scan may collect
    std::uint16_t used_ = 0;     // of collected_
    std::uint8_t listsLeft_ = 0; // of the root
    std::array<Level, MP_COUNT> levels_;
    std::array<std::uint16_t, mostPoints> collected_;
};

} // namespace shm
