// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Images in files.
#pragma once

#include "inspect/image/FileDescriptor.h"
#include "inspect/image/Image.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

namespace qel::inspect {

/// A file cannot be read or written. The text is one line for the user: "cannot read FILE: No such file or directory".
class ImageFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads an image from a file of any size or from a pipe. Bytes behind the region are not read from a pipe and do not
/// count in the image's size. A pipe that nobody writes to is given up, see InputFile. Reentrant.
/// @throws ImageFileError
Image readImage(std::string const& path);

/// Reads an image from any source. Reentrant.
/// @param sourceSize is called if the source delivered a whole region; it returns how many bytes the source has
/// @throws std::system_error if the source cannot be read
Image imageOf(ReadAt const& readAt, std::function<std::uint64_t()> const& sourceSize);

/// Writes exactly the image's bytes. A regular file is replaced as a whole: the bytes go to a new file beside it, which
/// takes its name when they are stored safely; on failure the old file stays. A device or pipe is written directly. The
/// live object is refused. Reentrant.
/// @throws ImageFileError
void writeImage(Image const& image, std::string const& path);

/// Whether the path is that of the live object, which need not exist. A symbolic link at the path is not followed.
/// Reentrant.
bool isLiveObject(std::filesystem::path const& path);

} // namespace qel::inspect
