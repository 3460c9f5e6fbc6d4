// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region's layout and vocabulary as one document for programs.
#pragma once

#include <nlohmann/json.hpp>

namespace qel::tools {

/// Everything that a reader in another language needs to know by number: tables and fields of the region, the bytes of a
/// sensor id, value keys with units and factors, states with class and LED, type codes. Built from the tables that the
/// library itself uses. docs/reference/layout-schema.json describes the members.
///
/// Threads: reentrant.
nlohmann::ordered_json layoutDocument();

} // namespace qel::tools
