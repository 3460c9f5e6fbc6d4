// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How the writing process uses the library's writer, and the literal one.
#pragma once

#include "bench/support/Plan.h"
#include "domain/MeasureValue.h"
#include "region/QelShmRecords.h"

#include <cstddef>
#include <memory>

namespace bench {

/// A plan as the map of definitions that addStructure takes.
template <typename Definitions>
Definitions definitionsOf(Plan const& plan) {
    Definitions definitions;
    for (auto const& point : plan.points()) {
        auto& definition = definitions[point.svid];
        for (auto const key : valueKeys) {
            definition.mvs.emplace(key, shm::NO_POSITION);
        }
    }
    return definitions;
}

template <typename Definitions>
class TreeInput {
public:
    explicit TreeInput(Plan const& plan) : definitions_(definitionsOf<Definitions>(plan)) {}
    Definitions const& definitions() const { return definitions_; }

private:
    Definitions definitions_;
};

/// A writer's owner.
template <typename Writer, typename Definitions>
class TreeWriter {
public:
    /// Maps a fresh region.
    void open() { writer_.openShm(); }

    void build(TreeInput<Definitions> const& input) {
        writer_.addStructure(input.definitions());
        writer_.setActive();
    }

    bool update(Access const& access, Sample const& sample) {
        return writer_.updateMV(
            access.svid, std::make_unique<measval::MeasureValue>(sample.number, sample.at, sample.state));
    }

    /// The same; the number is asked for when the value's memory is there already.
    template <typename Number>
    bool updateLate(Access const& access, Number const& number) {
        return writer_.updateMV(access.svid, std::unique_ptr<measval::MeasureValue>(
                                                 new measval::MeasureValue(number(), 0, eStatus_NoError)));
    }

    /// By a handle that the client keeps.
    template <typename Kept>
    bool updateKept(Kept& kept, Sample const& sample) {
        return writer_.updateMV(kept, sample.number, sample.at, sample.state);
    }

    void propagate() { writer_.propagateStates(); }

    std::size_t bytes() const { return shm::REGION_SIZE; }

private:
    Writer writer_;
};

} // namespace bench
