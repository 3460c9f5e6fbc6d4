// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The real reader, asked everything it can be asked.
#pragma once

#include "tests/cuts/Past.h"
#include "tests/cuts/Picture.h"
#include "tests/reader/MappedReader.h"

#include "reader/QelShmKeptMVal.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// Two readers of the region: one that builds its index anew for each picture, and one that keeps index and kept values
/// from before an operation, as a reader does until the change is announced to it.
///
/// Each answer "" means that there was nothing to complain of.
class CutReader {
public:
    /// What a look-up by the old index found.
    struct Found {
        std::int64_t point = 0; ///< that was asked for
        std::uint16_t key = 0;
        bool isNull = true;
        SeenValue value; ///< its owner is the point asked for
    };

    /// Maps the existing object.
    CutReader();

    /// Builds the index that will be old, and finds every value of these pictures that is there now.
    void remember(Picture const& now);

    /// Visits the region. @p moving is called at the start of each callback, with the callback's number.
    /// @throws std::runtime_error when the visit does not end
    void visit(Picture& seen, std::function<void(std::size_t)> const& moving = {});

    /// Scans the region by ranges; the steps are numbered as the callbacks of a visit.
    /// @throws std::runtime_error when the scan does not end
    void scan(Picture& seen, std::function<void(std::size_t)> const& moving = {});

    /// The lists of points and values against what a visit met.
    std::string compareLists(Picture const& visited);

    /// A new index against what a visit met: every id of the past is found where it was met first, or not at all.
    /// @param unfound is raised for each value that a visit met and `mval` does not find
    std::string compareIndex(Picture const& visited, Past const& past, std::size_t& unfound);

    /// What the old index and the values kept by it give now.
    void lookUpByOldIndex(std::vector<Found>& found);

    /// The points that the old index knows, and the slots where it finds them.
    std::vector<std::uint32_t> const& rememberedSlots() const { return rememberedSlots_; }

    /// How many of them are shown by `mpnt` with an id that is not theirs; complains of slots outside the table.
    std::string countForeignPoints(std::size_t& foreign);

private:
    class Noting;

    std::uint32_t slotOf(shm::QelShmMPnt const& point) const;
    std::uint32_t slotOf(shm::QelShmMVal const& value) const;
    SeenValue seen(shm::QelShmMVal const& value, std::int64_t owner) const;

    MappedReader fresh_;
    MappedReader old_;
    std::uint8_t const* freshBytes_;
    std::uint8_t const* oldBytes_;
    std::vector<long long> rememberedPoints_;
    std::vector<std::uint32_t> rememberedSlots_;
    std::vector<shm::QelShmKeptMVal> kept_;
};

} // namespace qel::test
