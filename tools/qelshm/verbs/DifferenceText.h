// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The sides of a difference, for people and programs. All functions are reentrant.
#pragma once

#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/verbs/Json.h"

#include "inspect/compare/Difference.h"

#include <string>
#include <utility>

namespace qel::tools {

/// One side: "230.1 V", "High Alarm", "unit1/inlet1", "yes"; "-" for nothing.
std::string sideText(inspect::DifferenceSide const& side, inspect::Difference const& difference);

/// Both sides; numbers that look the same in their unit get all their digits.
std::pair<std::string, std::string> sideTexts(inspect::Difference const& difference);

/// The style of a state; Plain for anything else.
Style sideStyle(inspect::DifferenceSide const& side);

/// One side with its text.
Json jsonSide(inspect::DifferenceSide const& side, inspect::Difference const& difference);

} // namespace qel::tools
