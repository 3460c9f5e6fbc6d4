// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Images in files.
#pragma once

#include "inspect/image/Image.h"

#include <stdexcept>
#include <string>

namespace qel::inspect {

/// A file that cannot be read or written; one line for the user: "cannot read FILE: what is wrong".
class ImageFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a file of any size, or what a pipe delivers; of a pipe, bytes past the region are left unread and do not
/// count. Throws ImageFileError. Any thread.
Image readImage(std::string const& path);

/// Writes exactly the image's bytes. A regular file is replaced as a whole or, when that fails, left as it was: the
/// bytes go to a new file beside it, which takes the name when they are safely stored. A device or pipe is written
/// directly. The live object is refused. Throws ImageFileError. Any thread.
void writeImage(Image const& image, std::string const& path);

} // namespace qel::inspect
