// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the columns of a recording mean.
#pragma once

#include "tools/replay/unit/Topology.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel::tools {

/// Name of the first column of every recording.
constexpr std::string_view timestampColumn = "timestamp_utc";

/// A column of readings, and the value that it feeds. Reentrant.
struct Column {
    std::string name;
    PointId point;
    unsigned short key;
};

/// The column of a name such as "outlet6_active_power_W"; nothing if the name is unknown. Reentrant.
std::optional<Column> parseColumn(std::string_view name);

/// Examples of column names, for messages.
constexpr std::string_view columnGrammar =
    "a column such as inlet1_voltage_V, outlet10_active_power_W, phase12_voltage_V, total_power_factor, "
    "frequency_Hz or sensor1_temperature_degC";

} // namespace qel::tools
