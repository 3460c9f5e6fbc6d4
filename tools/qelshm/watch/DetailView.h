// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The selected point and value in detail.
#pragma once

#include "tools/qelshm/watch/RowView.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::watch {

/// A value with a curve in the graph. Reentrant.
struct CurveView {
    std::string name; ///< "socket6 Active Power"
    unsigned short key;
    History const* history; ///< valid until the next update
};

/// The texts are empty if nothing is selected. Reentrant.
struct DetailView {
    std::string path;
    std::string svid;
    std::string type;
    std::string state;
    tools::Style style;            ///< of the state
    std::vector<RowView> values;   ///< of the point; the one in the graph is selected
    std::string graphName;         ///< name of that value
    std::string delivered;         ///< time of its last delivery, by the writer's clock
    std::vector<CurveView> curves; ///< that value, then the marked ones; empty without a value
    std::uint64_t newestBucket;
    std::uint64_t bucketMs; ///< how long a column of the graph lasts
    std::uint64_t seenMs;   ///< how long the value was seen

    /// @return the time that a graph with so many columns shows, ms: not more than was seen
    std::uint64_t spanOf(std::size_t columns) const;
};

/// Reentrant.
/// @param row  the selected one; null for none
/// @param span of the graph, index into historyFactors
DetailView detailOf(RowViewInput const& input, Row const* row, std::size_t span);

} // namespace qel::watch
