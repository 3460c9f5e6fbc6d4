// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A file with a capture.
#pragma once

#include "inspect/capture/CaptureWriter.h"
#include "inspect/image/Image.h"

#include "tests/support/TempFile.h"

#include <unistd.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

/// Writes a capture of the images to a temporary file.
///
/// Threads: reentrant.
class CaptureFile {
public:
    static constexpr std::uint64_t startTime = 1686296070000; // 2023-06-09T07:34:30Z
    static constexpr std::uint64_t firstTime = 40;            // ms since the capture began
    static constexpr std::uint64_t interval = 500;            // ms

    explicit CaptureFile(std::vector<inspect::Image> images) : file_(""), images_(std::move(images)) {
        ::unlink(path().c_str()); // a capture overwrites nothing
        inspect::CaptureWriter writer(path(), startTime);
        for (std::size_t index = 0; index < images_.size(); ++index) {
            writer.append(firstTime + index * interval, images_[index]);
        }
    }

    std::string const& path() const { return file_.path(); }
    std::vector<inspect::Image> const& images() const { return images_; }

private:
    TempFile file_;
    std::vector<inspect::Image> images_;
};

} // namespace qel::test
