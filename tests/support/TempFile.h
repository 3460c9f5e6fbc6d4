// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A temporary file.
#pragma once

#include <string>

namespace qel::test {

/// Removed with the object.
///
/// Threads: reentrant.
class TempFile {
public:
    /// Writes the text to a new file in the directory for temporary files.
    explicit TempFile(std::string const& text);
    ~TempFile();
    TempFile(TempFile const&) = delete;
    TempFile& operator=(TempFile const&) = delete;

    std::string const& path() const { return path_; }

private:
    std::string path_;
};

} // namespace qel::test
