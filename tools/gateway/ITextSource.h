// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Text that is made while it is sent.
#pragma once

#include <string>

namespace qel::gateway {

/// Makes a long text part by part, so that it never stands in memory as a whole.
///
/// Threads: thread-bound; the thread that asks for the first part asks for all.
class ITextSource {
public:
    virtual ~ITextSource() = default;

    /// Makes the next part.
    /// @param[in,out] part the text, some KiB, is appended to it
    /// @return false if there is no more; nothing was appended then
    virtual bool next(std::string& part) = 0;
};

} // namespace qel::gateway
