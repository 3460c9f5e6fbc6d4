// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Text of a value, from maps and through a stream.
#pragma once

#include <string>

namespace bench::literal {

/// The value in its key's format with the given separator before the unit: "230.1 V".
std::string str(unsigned short key, double value, std::string const& separator);

} // namespace bench::literal
