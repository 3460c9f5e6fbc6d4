// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values of an image as people read them. All functions are reentrant.
#pragma once

#include "domain/eStatus_Bits.h"
#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

class NameSelection;

/// A value. Reentrant.
struct ValueFacts {
    long long svid;
    unsigned short key;
    std::string name;
    std::string text;             ///< number and unit; "--" or "n/a" without a value
    std::optional<double> number; ///< none without a value, and for infinity and NaN
    std::string_view unit;        ///< "" for none
    eStatus_Bits state;
    std::uint64_t at; ///< ms since 1970 UTC; 0 for never
};

/// A point. Reentrant.
struct PointFacts {
    long long svid;
    std::string path;
    std::string parentPath; ///< "" for a top-level point
    std::string_view kind;  ///< "unit", "inlet", "socket", "sensor", ...
    unsigned typeCode;
    std::string type;
    std::uint32_t pos;
    std::uint32_t depth; ///< 1 for a top-level point
    eStatus_Bits state;
    std::uint64_t at; ///< time of its own state, ms since 1970 UTC; 0 for never
};

/// @param node of the image's tree
PointFacts pointFacts(inspect::Image const& image, inspect::PointTree const& tree,
                      inspect::PointNode const& node);

/// @param pos slot of a value of the node
ValueFacts valueFacts(inspect::Image const& image, inspect::PointNode const& node, std::uint32_t pos);

/// Lists the values of a node in the order of its chain.
std::vector<ValueFacts> valuesOf(inspect::Image const& image, inspect::PointTree const& tree,
                                 inspect::PointNode const& node);

/// Lists those of them that are selected.
std::vector<ValueFacts> valuesOf(inspect::Image const& image, inspect::PointTree const& tree,
                                 inspect::PointNode const& node, NameSelection const& selection);

} // namespace qel::tools
