// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace qel::inspect {

CaptureReader::CaptureReader(std::string path)
    : path_(std::move(path)),
      file_(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
    if (!file_) {
        fail(std::generic_category().message(errno));
    }
    auto const header = take(RECORDING_HEADER_SIZE);
    if (header.size() < RECORDING_HEADER_SIZE) {
        fail("it is no recording, or ends within the header at byte 0");
    }
    try {
        startTime_ = recordingStart(header);
    } catch (std::invalid_argument const& problem) {
        fail(problem.what());
    }
    offset_ = RECORDING_HEADER_SIZE;
}

std::optional<RecordedSample> CaptureReader::next() {
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
    return RecordedSample{time_, last_};
}

/// At the end of the file fewer bytes than asked for.
std::string CaptureReader::take(std::size_t count) const {
    std::string bytes(count, '\0');
    std::size_t present = 0;
    while (present < count) {
        auto const got = ::read(file_.number(), bytes.data() + present, count - present);
        if (got > 0) {
            present += static_cast<std::size_t>(got);
        } else if (got == 0) {
            break;
        } else if (errno != EINTR) {
            fail(std::generic_category().message(errno));
        }
    }
    bytes.resize(present);
    return bytes;
}

void CaptureReader::fail(std::string const& problem) const {
    throw RecordingError("cannot read " + path_ + ": " + problem);
}

void CaptureReader::failInSample(std::string const& problem) {
    damage_ = "the sample at byte " + std::to_string(offset_) + " is " + problem + "; " +
              std::to_string(samples_) + (samples_ == 1 ? " sample" : " samples") + " before it " +
              (samples_ == 1 ? "is" : "are") + " complete";
    fail(*damage_);
}

} // namespace qel::inspect
