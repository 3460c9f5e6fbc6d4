// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Image files for a test.
#pragma once

#include "inspect/image/Image.h"

#include <filesystem>
#include <string>

namespace qel::test {

/// A new folder that is the working directory as long as the object lives, so that files in it go by their bare names.
///
/// Threads: thread-bound to the test's main thread; one object at a time.
class ImageFolder {
public:
    ImageFolder();
    ~ImageFolder();
    ImageFolder(ImageFolder const&) = delete;
    ImageFolder& operator=(ImageFolder const&) = delete;

    /// Writes a sample image to NAME.img and gives that name.
    std::string add(std::string const& sample) const;

    /// Writes an image to a file of this name and gives the name.
    std::string add(std::string const& name, inspect::Image const& image) const;

    std::filesystem::path const& path() const { return path_; }

private:
    std::filesystem::path before_;
    std::filesystem::path path_;
};

} // namespace qel::test
