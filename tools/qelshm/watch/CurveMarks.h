// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The values whose curves stay in the graph.
#pragma once

#include <cstddef>
#include <vector>

namespace qel::watch {

/// A few values by their ids, in the order in which they were marked.
///
/// Threads: reentrant.
class CurveMarks {
public:
    /// With the selected value there is one more curve.
    static constexpr std::size_t most = 3;

    /// Marks a value, or removes its mark.
    /// @return false if there are too many marks to add one
    bool toggle(long long svid);

    std::vector<long long> const& svids() const { return svids_; }

private:
    std::vector<long long> svids_;
};

} // namespace qel::watch
