// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What all that writes files has in common.
#pragma once

#include <filesystem>
#include <string_view>

namespace qel::inspect {

/// Writes all bytes, over short and interrupted writes. Gives 0, or the error number; some of the bytes may have been
/// written then. Any thread.
int writeAll(int fd, std::string_view bytes);

/// Whether the path is the one under which the system shows the live object, be it there or not. A link at the path
/// itself is not followed. Any thread.
bool isLiveObject(std::filesystem::path const& path);

} // namespace qel::inspect
