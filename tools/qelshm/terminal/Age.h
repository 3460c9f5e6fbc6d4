// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How long ago something was.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qel::tools {

/// Milliseconds from a time to now, negative for one from the future; nothing for 0 (never) and for what is no
/// calendar time. Any thread.
std::optional<std::int64_t> ageOf(std::uint64_t time, std::uint64_t now);

/// "0.3 s", "12 s", "5 min 7 s", "3 h 20 min", "12 d 4 h"; "in the future" and "-" where there is none. Any thread.
std::string ageText(std::uint64_t time, std::uint64_t now);

} // namespace qel::tools
