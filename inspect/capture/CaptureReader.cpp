// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureReader.h"

#include <cerrno>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace qel::inspect {

CaptureReader::CaptureReader(std::string path) : path_(std::move(path)), file_(path_) {
    if (!file_) {
        fail(std::generic_category().message(errno));
    }
    auto const header = take(CAPTURE_HEADER_SIZE);
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
    if (damage_) {
        fail(*damage_);
    }
    auto const head = take(FRAME_HEAD_SIZE);
    if (head.empty()) {
        return std::nullopt;
    }
    auto const size = head.size() == FRAME_HEAD_SIZE ? contentSize(head) : 0;
    if (!size) {
        failInSample("damaged: there is no sample of that length");
    }
    auto const content = take(*size);
    if (head.size() < FRAME_HEAD_SIZE || content.size() < *size) {
        failInSample("cut off");
    }
    try {
        auto const frame = frameFrom(head, content, last_);
        if (frame.elapsed > std::numeric_limits<std::uint64_t>::max() - time_) {
            throw std::invalid_argument("the time is out of range");
        }
        time_ += frame.elapsed;
        last_ = frame.image;
    } catch (std::invalid_argument const& problem) {
        failInSample(std::string("damaged: ") + problem.what());
    }
    offset_ += head.size() + content.size();
    ++samples_;
    return CaptureSample{time_, last_};
}

/// Fewer bytes at the end of the file.
std::string CaptureReader::take(std::size_t count) const {
    std::string bytes(count, '\0');
    try {
        bytes.resize(readAll(
            [this](void* buffer, std::size_t size, off_t /*offset*/) { return file_.read(buffer, size); },
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

} // namespace qel::inspect
