// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Numbers as programs read them. All functions are reentrant.
#pragma once

#include "domain/eStatus_Bits.h"

#include <string>

namespace qel::stream {

/// The shortest decimal text that reads as the same number.
/// @param state of the value
/// @return "" without a number: before the first delivery, and for infinity and NaN
std::string plainNumber(double number, eStatus_Bits state);

} // namespace qel::stream
