// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds the literal build to the library.
#pragma once

#include "bench/support/Plan.h"

namespace bench {

/// Throws std::runtime_error when the regions that the library and the literal build make of a plan, filled and
/// propagated, differ in any byte.
void checkSameRegion(Plan const& plan);

} // namespace bench
