// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How often each duration occurred.
#pragma once

#include <boost/histogram/axis/regular.hpp>
#include <boost/histogram/histogram.hpp>
#include <boost/histogram/storage_adaptor.hpp>

#include <cstdint>
#include <tuple>
#include <vector>

namespace bench {

/// A histogram of durations with a resolution of one per cent, from 1 ns to 10 s. Takes memory when it is made and none
/// afterwards, so that recording does not disturb what is measured.
///
/// Threads: thread-bound to the thread that records.
class Durations {
public:
    Durations();

    /// @param nanoseconds less than one counts as one
    void record(std::int64_t nanoseconds);

    /// The duration that this share of all durations does not exceed.
    /// @param share 0 to 1
    /// @return ns, rounded up by at most one per cent; 0 when nothing was recorded
    double quantile(double share) const;

    std::int64_t longest() const { return longest_; }
    std::uint64_t count() const { return count_; }

private:
    using Axis = boost::histogram::axis::regular<double, boost::histogram::axis::transform::log>;

    boost::histogram::histogram<std::tuple<Axis>, boost::histogram::dense_storage<std::uint64_t>> counts_;
    std::int64_t longest_ = 0;
    std::uint64_t count_ = 0;
};

} // namespace bench
