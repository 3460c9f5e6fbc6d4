// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a user typed, in messages.
#pragma once

#include <string>
#include <string_view>

namespace qel::inspect {

/// The text between quotation marks. Reentrant.
inline std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

} // namespace qel::inspect
