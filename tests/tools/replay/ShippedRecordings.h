// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The recordings that come with the project.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace qel::test {

constexpr char const* outletsFile = QEL_DATA_DIR "/outlets_1s.csv";
constexpr char const* threePhaseFile = QEL_DATA_DIR "/threephase_inlet_2min.csv";
constexpr char const* environmentFile = QEL_DATA_DIR "/environment_1min.csv";
constexpr std::array<char const*, 3> shippedRecordings{outletsFile, threePhaseFile, environmentFile};

/// Names of a file's columns after the time.
std::vector<std::string> columnsOf(std::string const& file);

} // namespace qel::test
