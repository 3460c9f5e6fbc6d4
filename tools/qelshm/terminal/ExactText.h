// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Numbers with all their digits.
#pragma once

#include <string>

namespace qel::tools {

/// The shortest digits that identify the number, with a decimal point in every locale: "230.1", "1e+30". Reentrant.
std::string exactText(double number);

} // namespace qel::tools
