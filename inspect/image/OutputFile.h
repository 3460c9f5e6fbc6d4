// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Files that are written as a whole or not at all.
#pragma once

#include "inspect/image/FileDescriptor.h"

#include <string>
#include <string_view>

namespace qel::inspect {

/// Replaces a regular file as a whole: the bytes go to a new file beside it, which takes its name when they are stored
/// safely; on failure the old file stays. Until then the new file has no name, where the file system can do that, so that
/// nothing of it stays if the process is killed. A device or pipe is written directly. The live object is refused.
///
/// Threads: reentrant.
class OutputFile {
public:
    /// @throws ImageFileError "cannot write FILE: Permission denied", as write() and finish()
    explicit OutputFile(std::string path);
    /// Removes the new file unless finish() was successful.
    ~OutputFile();
    OutputFile(OutputFile const&) = delete;
    OutputFile& operator=(OutputFile const&) = delete;

    void write(std::string_view bytes) const;

    /// Stores everything safely and gives the file its name. Nothing can be written any more.
    void finish();

private:
    void giveName();

    std::string path_;      ///< as the user named it
    std::string target_;    ///< behind symbolic links
    std::string temporary_; ///< name of the new file; "" for a device or pipe
    bool isNamed_ = true;   ///< whether the new file has that name
    FileDescriptor fd_;
};

} // namespace qel::inspect
