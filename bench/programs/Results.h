// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a program found, as JSON.
#pragma once

#include "bench/works/Work.h"

#include <string>
#include <vector>

namespace bench {

/// Numbers of one contender at one work, under the names of what was measured.
struct Finding {
    std::string work;
    std::string contender;
    std::string variant;
    std::string what;
    std::vector<double> numbers;
};

/// Writes the findings for a shape as a JSON file; throws std::runtime_error when that fails.
void writeFindings(std::string const& path, Shape const& shape, std::vector<Finding> const& findings);

} // namespace bench
