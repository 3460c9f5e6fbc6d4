// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Exit statuses of the programs.
#pragma once

namespace qel::tools {

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1; ///< no bus, no region, nothing to read, or another failure of the environment
constexpr int exitUsage = 2;   ///< wrong arguments or wrong input

} // namespace qel::tools
