// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The fixture of the tests of streams.
#pragma once

#include "tools/qelshm/stream/ChangeFinder.h"
#include "tools/qelshm/stream/ISink.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qel::test {

/// A unit that changes, and a finder that looks at it.
class StreamFixture : public testing::Test {
protected:
    static constexpr std::uint64_t time = 1686296078000; // 2023-06-09T07:34:38Z
    static constexpr std::uint64_t now = 1686296080000;

    /// Takes a snapshot and hands what it brings to a function.
    template <typename Take>
    void look(Take const& take, unsigned objects = 1) {
        auto snapshot = unit.snapshot(ticks += 250, objects);
        snapshot.now = now;
        auto const status =
            inspect::regionStatus(snapshot.source, snapshot.image, snapshot.now, std::nullopt);
        take(finder.update(snapshot, status));
    }
    void lookWith(stream::ISink& sink) {
        look([&](stream::Report const& report) { sink.take(report); });
    }

    /// "PATH: BEFORE => STATE" of each change, numbers of states.
    std::vector<std::string> changes(unsigned objects = 1) {
        std::vector<std::string> texts;
        look(
            [&](stream::Report const& report) {
                for (auto const& change : report.changes) {
                    texts.push_back(change.path + ": " + std::to_string(change.before) + " => " +
                                    std::to_string(change.state));
                }
            },
            objects);
        return texts;
    }

    SmallUnit unit;
    watch::WatchedNames names{{}};
    stream::ChangeFinder finder{names};
    std::uint64_t ticks = 0;
};

} // namespace qel::test
