// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/OutputFile.h"

#include "inspect/image/ImageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace qel::inspect {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void cannotWrite(std::string const& path, std::string const& problem) {
    throw ImageFileError("cannot write " + path + ": " + problem);
}

[[noreturn]] void cannotWrite(std::string const& path, int error) {
    cannotWrite(path, std::generic_category().message(error));
}

std::string pathOf(FileDescriptor const& file) {
    return "/proc/self/fd/" + std::to_string(file.number());
}

/// A new file without a name in the folder of this one. None if the file system or a missing /proc forbids that.
FileDescriptor namelessFile(std::string const& target, mode_t mode) {
    auto const folder = fs::path(target).parent_path();
    FileDescriptor file(
        ::open(folder.empty() ? "." : folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode));
    bool const canBeNamed = file && ::access(pathOf(file).c_str(), F_OK) == 0;
    return canBeNamed ? std::move(file) : FileDescriptor();
}

} // namespace

OutputFile::OutputFile(std::string path) : path_(std::move(path)) {
    std::error_code ignored;
    // Follows links: the file is replaced, not a link that leads to it.
    auto const canonical = fs::canonical(path_, ignored);
    target_ = canonical.empty() ? path_ : canonical.string();
    if (isLiveObject(target_)) {
        cannotWrite(path_, "it is the live object; choose another file");
    }
    struct stat status = {};
    if (::stat(target_.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        fd_ = FileDescriptor(::open(target_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
        if (!fd_) {
            cannotWrite(path_, errno);
        }
        return;
    }
    constexpr mode_t anyone = 0666; // less the umask
    temporary_ = target_ + ".new-" + std::to_string(::getpid());
    fd_ = namelessFile(target_, anyone);
    if (fd_) {
        isNamed_ = false;
        return;
    }
    fd_ = FileDescriptor(::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, anyone));
    if (!fd_) {
        temporary_.clear(); // another process may own it
        cannotWrite(path_, errno);
    }
}

OutputFile::~OutputFile() {
    if (!temporary_.empty() && isNamed_) {
        ::unlink(temporary_.c_str());
    }
}

void OutputFile::write(std::string_view bytes) const {
    if (int const error = writeAll(fd_.number(), bytes); error != 0) {
        cannotWrite(path_, error);
    }
}

void OutputFile::finish() {
    if (!temporary_.empty()) {
        if (::fsync(fd_.number()) != 0) {
            cannotWrite(path_, errno);
        }
        if (!isNamed_) {
            giveName();
        }
        if (::rename(temporary_.c_str(), target_.c_str()) != 0) {
            cannotWrite(path_, errno);
        }
        temporary_.clear();
    }
    fd_ = FileDescriptor();
}

// A link cannot replace a file, so the name is a temporary one, for as long as the renaming takes.
void OutputFile::giveName() {
    if (::linkat(AT_FDCWD, pathOf(fd_).c_str(), AT_FDCWD, temporary_.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        cannotWrite(path_, errno);
    }
    isNamed_ = true;
}

} // namespace qel::inspect
