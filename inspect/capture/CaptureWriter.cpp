// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureWriter.h"

#include "inspect/image/ImageFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace qel::inspect {

namespace {

[[noreturn]] void cannotRecord(std::string const& path, std::string const& problem) {
    throw CaptureError("cannot record to " + path + ": " + problem);
}

} // namespace

CaptureWriter::CaptureWriter(std::string path, std::uint64_t startTime) : path_(std::move(path)) {
    if (isLiveObject(path_)) {
        cannotRecord(path_, "it is the live object; choose another file");
    }
    constexpr mode_t anyone = 0666; // less the umask
    file_ = FileDescriptor(::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, anyone));
    if (!file_) {
        fail(errno);
    }
    try {
        write(captureHeader(startTime));
    } catch (CaptureError const&) {
        ::unlink(path_.c_str()); // so that the same path can be tried again
        throw;
    }
}

void CaptureWriter::append(std::uint64_t time, Image const& image) {
    appendWithin(std::numeric_limits<std::uint64_t>::max(), time, image);
}

bool CaptureWriter::appendWithin(std::uint64_t most, std::uint64_t time, Image const& image) {
    if (time < time_) {
        throw std::invalid_argument("a sample is older than the one before");
    }
    auto const frame = frameOf(time - time_, last_, image);
    if (samples_ != 0 && (size_ > most || frame.size() > most - size_)) {
        return false;
    }
    write(frame);
    time_ = time;
    last_ = image;
    ++samples_;
    return true;
}

void CaptureWriter::close() {
    if (::fsync(file_.number()) != 0) {
        fail(errno);
    }
    file_ = FileDescriptor();
}

void CaptureWriter::write(std::string_view bytes) {
    if (int const error = writeAll(file_.number(), bytes); error != 0) {
        // Half a sample would make the next one unreadable.
        auto const end = static_cast<off_t>(size_);
        if (::ftruncate(file_.number(), end) != 0 || ::lseek(file_.number(), end, SEEK_SET) != end) {
            file_ = FileDescriptor(); // nothing can be appended any more
        }
        fail(error);
    }
    size_ += bytes.size();
}

void CaptureWriter::fail(int error) const {
    cannotRecord(path_, std::generic_category().message(error));
}

} // namespace qel::inspect
