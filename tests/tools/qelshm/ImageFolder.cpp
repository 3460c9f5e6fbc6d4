// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/ImageFolder.h"

#include "inspect/image/ImageFile.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace qel::test {

ImageFolder::ImageFolder() : before_(std::filesystem::current_path()) {
    std::string name = "/tmp/qel-tools-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    path_ = name;
    std::filesystem::current_path(path_);
}

ImageFolder::~ImageFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before_, ignored);
    std::filesystem::remove_all(path_, ignored);
}

std::string ImageFolder::add(std::string const& sample) const {
    return add(sample + ".img", sampleImage(sample));
}

std::string ImageFolder::add(std::string const& name, inspect::Image const& image) const {
    inspect::writeImage(image, (path_ / name).string());
    return name;
}

} // namespace qel::test
