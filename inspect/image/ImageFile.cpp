// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/ImageFile.h"

#include "inspect/image/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

[[noreturn]] void cannot(char const* what, std::string const& path, std::string const& problem) {
    throw ImageFileError("cannot " + std::string(what) + ' ' + path + ": " + problem);
}

[[noreturn]] void cannot(char const* what, std::string const& path, int error) {
    cannot(what, path, std::generic_category().message(error));
}

/// A new file beside the target. It is removed unless takeName() succeeded.
class NewFile {
public:
    /// @param name the target as the user calls it
    NewFile(std::string const& target, std::string name)
        : target_(target),
          name_(std::move(name)),
          path_(target + ".new-") {
        constexpr mode_t anyone = 0666; // less the umask
        path_ += std::to_string(::getpid());
        fd_ = FileDescriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, anyone));
        if (!fd_) {
            cannot("write", name_, errno);
        }
    }
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;
    ~NewFile() {
        if (fd_) {
            ::unlink(path_.c_str());
        }
    }

    void write(std::string_view bytes) const {
        int error = writeAll(fd_.number(), bytes);
        if (error == 0 && ::fsync(fd_.number()) != 0) {
            error = errno;
        }
        if (error != 0) {
            cannot("write", name_, error);
        }
    }

    void takeName() {
        if (::rename(path_.c_str(), target_.c_str()) != 0) {
            cannot("write", name_, errno);
        }
        fd_ = FileDescriptor();
    }

private:
    std::string target_;
    std::string name_;
    std::string path_;
    FileDescriptor fd_;
};

void writeDirectly(Image const& image, std::string const& path, std::string const& name) {
    FileDescriptor const fd(::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    int const error = fd ? writeAll(fd.number(), image.bytes()) : errno;
    if (error != 0) {
        cannot("write", name, error);
    }
}

} // namespace

Image readImage(std::string const& path) {
    InputFile const file(path);
    if (!file) {
        cannot("read", path, errno);
    }
    try {
        return imageOf(
            [&](void* bytes, std::size_t count, off_t /*offset*/) { return file.read(bytes, count); },
            [&] { return file.regularSize(); });
    } catch (std::system_error const& error) {
        cannot("read", path, error.code().value());
    }
}

Image imageOf(ReadAt const& readAt, std::function<std::uint64_t()> const& sourceSize) {
    auto region = std::make_unique<shm::record::Region>();
    std::uint64_t const present = readAll(readAt, region.get(), shm::REGION_SIZE);
    return {std::move(region), present < shm::REGION_SIZE ? present : std::max(sourceSize(), present)};
}

void writeImage(Image const& image, std::string const& path) {
    std::error_code ignored;
    // Follows links: the file is replaced, not a link that leads to it.
    auto const canonical = fs::canonical(path, ignored);
    auto const target = canonical.empty() ? fs::path(path) : canonical;
    if (isLiveObject(target)) {
        cannot("write", path, "it is the live object; choose another file");
    }
    struct stat status = {};
    if (::stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        writeDirectly(image, target.string(), path);
        return;
    }
    NewFile file(target.string(), path);
    file.write(image.bytes());
    file.takeName();
}

bool isLiveObject(fs::path const& path) {
    std::error_code ignored;
    return path.filename() == shm::REGION_NAME &&
           fs::equivalent(path.has_parent_path() ? path.parent_path() : ".", sharedMemoryDirectory, ignored);
}

} // namespace qel::inspect
