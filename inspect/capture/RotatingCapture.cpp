// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/RotatingCapture.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace qel::inspect {

namespace {

[[noreturn]] void cannotRecord(std::string const& path, int error) {
    throw CaptureError("cannot record to " + path + ": " + std::generic_category().message(error));
}

bool exists(std::string const& path) {
    return ::faccessat(AT_FDCWD, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Gives a file another name, unless that name is taken. Somebody may have taken the file away.
void renameFile(std::string const& from, std::string const& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0 || errno == ENOENT) {
        return;
    }
    if (errno == EINVAL) { // a file system that does not know the flag
        if (exists(to)) {
            cannotRecord(to, EEXIST);
        }
        if (std::rename(from.c_str(), to.c_str()) == 0) {
            return;
        }
    }
    cannotRecord(to, errno);
}

} // namespace

RotatingCapture::RotatingCapture(std::string path, CaptureBounds bounds)
    : path_(std::move(path)),
      bounds_(bounds) {
    for (std::size_t age = 0; age < bounds_.files; ++age) {
        if (exists(name(age))) {
            cannotRecord(name(age), EEXIST);
        }
    }
}

void RotatingCapture::append(std::uint64_t time, Image const& image) {
    if (!writer_) {
        begin(time);
    }
    if (bounds_.size == 0) {
        writer_->append(time - start_, image);
    } else if (!writer_->appendWithin(bounds_.size, time - start_, image)) {
        rotate();
        begin(time);
        writer_->append(0, image);
    }
    ++samples_;
}

void RotatingCapture::close() {
    finish();
}

std::vector<std::string> RotatingCapture::files() const {
    std::vector<std::string> names;
    for (auto age = older_; age != 0; --age) {
        names.push_back(name(age));
    }
    if (samples_ != 0) {
        names.push_back(path_);
    }
    return names;
}

void RotatingCapture::begin(std::uint64_t time) {
    writer_.emplace(path_, time);
    start_ = time;
}

void RotatingCapture::finish() {
    if (writer_) {
        writer_->close();
        bytes_ += writer_->size();
        writer_.reset();
    }
}

void RotatingCapture::rotate() {
    finish();
    if (older_ + 1 == bounds_.files) {
        auto const& oldest = name(older_);
        if (::unlink(oldest.c_str()) != 0 && errno != ENOENT) {
            cannotRecord(oldest, errno);
        }
    } else {
        ++older_;
    }
    for (auto age = older_; age != 0; --age) {
        renameFile(name(age - 1), name(age));
    }
}

std::string RotatingCapture::name(std::size_t age) const {
    return age == 0 ? path_ : captureName(path_, std::to_string(age));
}

std::string captureName(std::string const& path, std::string const& part) {
    std::filesystem::path const whole(path);
    return (whole.parent_path() / whole.stem()).string() + '.' + part + whole.extension().string();
}

} // namespace qel::inspect
