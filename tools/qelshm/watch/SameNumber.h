// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// When a number has changed.
#pragma once

#include <cmath>

namespace qel::watch {

/// Whether a number is the one seen before; NaN is the same as NaN. Reentrant.
inline bool isSameNumber(double left, double right) {
    return left == right || (std::isnan(left) && std::isnan(right));
}

} // namespace qel::watch
