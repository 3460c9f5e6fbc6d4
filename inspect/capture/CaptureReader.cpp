// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureReader.h"

#include "inspect/image/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace qel::inspect {

CaptureReader::CaptureReader(std::string const& path)
    : CaptureReader(path, std::make_shared<InputFile const>(path)) {}

CaptureReader::CaptureReader(std::string path, std::shared_ptr<InputFile const> file)
    : path_(std::move(path)),
      file_(std::move(file)) {
    if (!*file_) {
        fail(std::generic_category().message(errno));
    }
    isRegular_ = file_->isRegular();
    auto const header = take(0, CAPTURE_HEADER_SIZE);
    if (header.size() < CAPTURE_HEADER_SIZE) {
        fail("it is not a capture, or it ends within the header");
    }
    try {
        startTime_ = captureStart(header);
    } catch (std::invalid_argument const& problem) {
        fail(problem.what());
    }
    offset_ = CAPTURE_HEADER_SIZE;
}

std::optional<CaptureSample> CaptureReader::next() {
    return advance() ? std::optional(CaptureSample{time_, region_.image()}) : std::nullopt;
}

bool CaptureReader::advance() {
    if (!load()) {
        return false;
    }
    time_ += loaded_->frame.elapsed;
    region_.apply(loaded_->frame);
    offset_ += loaded_->bytes;
    ++samples_;
    loaded_.reset();
    return true;
}

std::optional<std::uint64_t> CaptureReader::nextMoment() {
    return load() ? std::optional(momentOf(time_ + loaded_->frame.elapsed)) : std::nullopt;
}

std::uint64_t CaptureReader::momentOf(std::uint64_t time) const {
    constexpr auto latest = std::numeric_limits<std::uint64_t>::max();
    return time > latest - startTime_ ? latest : startTime_ + time;
}

/// Reads the next frame unless it is there already.
bool CaptureReader::load() {
    if (damage_) {
        fail(*damage_);
    }
    if (loaded_) {
        return true;
    }
    auto const head = take(offset_, FRAME_HEAD_SIZE);
    if (head.empty()) {
        return false;
    }
    auto const size = head.size() == FRAME_HEAD_SIZE ? contentSize(head) : 0;
    if (!size) {
        failInSample("damaged: there is no sample of that length");
    }
    auto loaded = std::make_unique<Loaded>();
    loaded->content = take(offset_ + FRAME_HEAD_SIZE, *size);
    if (head.size() < FRAME_HEAD_SIZE || loaded->content.size() < *size) {
        failInSample("cut off");
    }
    try {
        loaded->frame = checkedFrame(head, loaded->content);
        if (loaded->frame.elapsed > std::numeric_limits<std::uint64_t>::max() - time_) {
            throw std::invalid_argument("the time is out of range");
        }
    } catch (std::invalid_argument const& problem) {
        failInSample(std::string("damaged: ") + problem.what());
    }
    loaded->bytes = head.size() + loaded->content.size();
    loaded_ = std::move(loaded);
    return true;
}

/// Fewer bytes at the end of the file.
std::string CaptureReader::take(std::uint64_t offset, std::size_t count) const {
    std::string bytes(count, '\0');
    try {
        bytes.resize(readAll(
            [&](void* buffer, std::size_t size, off_t done) {
                return isRegular_ ? file_->readAt(buffer, size, static_cast<off_t>(offset) + done)
                                  : file_->read(buffer, size); // a pipe has no offsets
            },
            bytes.data(), count));
    } catch (std::system_error const& error) {
        fail(error.code().message());
    }
    return bytes;
}

void CaptureReader::fail(std::string const& problem) const {
    throw CaptureError("cannot read " + path_ + ": " + problem);
}

void CaptureReader::failInSample(std::string const& problem) {
    damage_ = "the sample at byte " + std::to_string(offset_) + " is " + problem + "; " +
              std::to_string(samples_) + (samples_ == 1 ? " sample" : " samples") + " before it " +
              (samples_ == 1 ? "is" : "are") + " complete";
    fail(*damage_);
}

bool isCapture(std::string const& path) {
    // Not blocking: a pipe may have taken the file's place.
    FileDescriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    struct stat status = {};
    if (!file || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    std::array<char, CAPTURE_MAGIC.size()> bytes{};
    auto const count = ::pread(file.number(), bytes.data(), bytes.size(), 0);
    return count == static_cast<ssize_t>(bytes.size()) && beginsAsCapture({bytes.data(), bytes.size()});
}

bool beginsAsCapture(std::string_view bytes) {
    return bytes.substr(0, CAPTURE_MAGIC.size()) == CAPTURE_MAGIC;
}

} // namespace qel::inspect
