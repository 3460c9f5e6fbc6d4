// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/ImageFile.h"

#include "inspect/image/InputFile.h"
#include "inspect/image/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace qel::inspect {

namespace {

namespace fs = std::filesystem;

/// Where Linux shows shared-memory objects.
constexpr char sharedMemoryDirectory[] = "/dev/shm";

[[noreturn]] void cannotRead(std::string const& path, int error) {
    throw ImageFileError("cannot read " + path + ": " + std::generic_category().message(error));
}

} // namespace

Image readImage(std::string const& path) {
    InputFile const file(path);
    if (!file) {
        cannotRead(path, errno);
    }
    try {
        return imageOf(
            [&](void* bytes, std::size_t count, off_t /*offset*/) { return file.read(bytes, count); },
            [&] { return file.regularSize(); });
    } catch (std::system_error const& error) {
        cannotRead(path, error.code().value());
    }
}

Image imageOf(ReadAt const& readAt, std::function<std::uint64_t()> const& sourceSize) {
    auto region = std::make_unique<shm::record::Region>();
    std::uint64_t const present = readAll(readAt, region.get(), shm::REGION_SIZE);
    return {std::move(region), present < shm::REGION_SIZE ? present : std::max(sourceSize(), present)};
}

void writeImage(Image const& image, std::string const& path) {
    OutputFile file(path);
    file.write(image.bytes());
    file.finish();
}

bool isLiveObject(fs::path const& path) {
    std::error_code ignored;
    return path.filename() == shm::REGION_NAME &&
           fs::equivalent(path.has_parent_path() ? path.parent_path() : ".", sharedMemoryDirectory, ignored);
}

} // namespace qel::inspect
