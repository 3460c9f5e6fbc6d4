// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values as lines of a table.
#pragma once

#include "tools/qelshm/terminal/TextTable.h"
#include "tools/qelshm/verbs/PointFacts.h"

#include <cstdint>

namespace qel::tools {

/// Layouts of the lines below.
enum LineLayout : std::size_t { PointLine, ValueLine };

/// Id, path, type and state of a point.
void addPointLine(TextTable& table, PointFacts const& point);

/// Id, name, number, state, time and age of a value, indented.
void addValueLine(TextTable& table, ValueFacts const& value, std::uint64_t now);

/// Point and values.
void addPointLines(TextTable& table, PointFacts const& point, std::vector<ValueFacts> const& values,
                   std::uint64_t now);

} // namespace qel::tools
