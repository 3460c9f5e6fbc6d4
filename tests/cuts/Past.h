// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the region's slots and ids were, whenever the writer rested.
#pragma once

#include "tests/cuts/Picture.h"
#include "tests/cuts/WriterBench.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::test {

/// A set of the moments at which the writer rested: bit k stands for "after its k-th call".
using Moments = std::uint32_t;

/// The pictures of the region before an operation and after each of its calls, and what follows from them: which slot
/// was whose, and which contents an id had when.
class Past {
public:
    /// @param hidden what the writer knew at some moment, with its values, whether or not a list led to it: such points
    ///               are not shown by any resting picture, but a reader may be among them
    /// @param stored contents that were stored for values, whether or not a picture shows them
    Past(std::vector<Picture> pictures, Picture hidden, std::vector<WriterBench::Stored> const& stored);

    std::vector<Picture> const& pictures() const { return pictures_; }
    Moments all() const { return (Moments{1} << pictures_.size()) - 1; }

    /// A point (by its id) or a value (by owner and key), with all that it ever was.
    struct Point {
        std::int64_t guid = 0;
        Moments present = 0;
        std::vector<SeenPoint const*> seen; ///< by moment, null where it was absent
        std::vector<SeenPoint const*> hidden;
    };
    struct Value {
        std::int64_t owner = 0;
        std::uint16_t key = 0;
        Moments present = 0;
        std::vector<SeenValue const*> seen;
        std::vector<SeenValue const*> hidden;
        std::vector<WriterBench::Stored> stored;
    };
    std::vector<Point> const& points() const { return points_; }
    std::vector<Value> const& values() const { return values_; }

    /// Null when there never was one.
    Point const* point(std::int64_t guid) const;
    Value const* value(std::int64_t owner, std::uint16_t key) const;

    /// Was the slot ever this point's, or this value's?
    bool hadPoint(std::uint32_t slot, std::int64_t guid) const;
    bool hadValue(std::uint32_t slot, std::int64_t owner, std::uint16_t key) const;

    /// When did the field hold that?
    template <typename Seen, typename Field>
    static Moments when(std::vector<Seen const*> const& seen, Field Seen::*field, Field content) {
        Moments moments = 0;
        for (std::size_t moment = 0; moment < seen.size(); ++moment) {
            if (seen[moment] != nullptr && seen[moment]->*field == content) {
                moments |= Moments{1} << moment;
            }
        }
        return moments;
    }

    /// The same for contents of values, shown or not: a content holds from the call that stored it to the next one.
    template <typename Content>
    Moments whenStored(Value const& value, Content SeenValue::*shown, Content WriterBench::Stored::*stored,
                       Content content) const {
        auto moments = when(value.seen, shown, content);
        for (std::size_t i = 0; i < value.stored.size(); ++i) {
            bool const isLast = i + 1 == value.stored.size();
            auto const end = isLast ? pictures_.size() : value.stored[i + 1].moment;
            for (auto moment = value.stored[i].moment; moment < end && value.stored[i].*stored == content;
                 ++moment) {
                moments |= Moments{1} << moment;
            }
        }
        return moments;
    }

private:
    Point& entry(SeenPoint const& seen);
    Value& entry(SeenValue const& seen);

    std::vector<Picture> pictures_;
    Picture hidden_;
    std::vector<Point> points_;
    std::vector<Value> values_;
};

} // namespace qel::test
