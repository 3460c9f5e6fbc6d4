// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The operations that contenders are measured by; see Sweep and Whole.
#pragma once

#include "bench/support/Plan.h"
#include "bench/works/Work.h"

#include <benchmark/benchmark.h>

namespace bench {

/// Whether all results of a sweep are true. Asking that takes a single instruction for each.
class AllTrue {
public:
    void operator+=(bool result) { all_ = all_ & result; }
    explicit operator double() const { return all_ ? 1 : 0; }

private:
    bool all_ = true;
};

/// Stores one value by id and key.
struct Update {
    using Sum = AllTrue;
    static constexpr auto accesses = &Order::values;

    template <typename Writer>
    static bool run(Writer&& writer, Access const& access) {
        return writer.update(access, sampleOf(access));
    }
    static bool expected(Access const& /*access*/) { return true; }
};

/// Looks a point up by id.
struct Find {
    using Sum = double;
    static constexpr auto accesses = &Order::points;

    template <typename Reader>
    static double run(Reader& reader, Access const& access) {
        auto const point = reader.find(access);
        benchmark::DoNotOptimize(point);
        return point ? 1 : 0;
    }
    static double expected(Access const& /*access*/) { return 1; }
};

/// Fetches one value's number by id and key.
struct Fetch {
    using Sum = double;
    static constexpr auto accesses = &Order::values;

    template <typename Reader>
    static double run(Reader& reader, Access const& access) {
        return reader.fetch(access);
    }
    static double expected(Access const& access) { return access.number; }
};

/// Looks a point up by id and adds its values up.
struct PointValues {
    using Sum = double;
    static constexpr auto accesses = &Order::points;

    template <typename Reader>
    static double run(Reader& reader, Access const& access) {
        return reader.sumOfPoint(access);
    }
    static double expected(Access const& access) { return access.number; }
};

/// Adds all values up.
struct Visit {
    template <typename Reader>
    static double run(Reader& reader) {
        return reader.sumOfAll();
    }
    static double expected(Order const& order) {
        double sum = 0;
        for (auto const& access : order.values) {
            sum += access.number;
        }
        return sum;
    }
};

/// Makes the index from sensor id to slot anew.
struct Rebuild {
    template <typename Reader>
    static double run(Reader& reader) {
        reader.rebuildIndex();
        benchmark::ClobberMemory();
        return 1;
    }
    static double expected(Order const& /*order*/) { return 1; }
};

} // namespace bench
