// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Text that is safe to print on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace qel::tools {

/// The text as UTF-8 without control characters: each byte of a control character (C0, DEL and C1) and each byte that is
/// not UTF-8 becomes \xHH.
///
/// Threads: reentrant.
std::string safeText(std::string_view text);

} // namespace qel::tools
