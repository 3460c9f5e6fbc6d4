// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureRing.h"

#include "inspect/capture/CaptureFormat.h"

#include <string_view>
#include <utility>

namespace qel::inspect {

void CaptureRing::add(std::uint64_t time, Image const& image) {
    if (!newest_) {
        oldest_ = Sample{time, image};
    } else {
        auto frame = frameOf(time - newest_->time, newest_->image, image);
        bytes_ += frame.size();
        changes_.push_back({time, std::move(frame)});
    }
    newest_ = Sample{time, image};
    while (bytes_ > most_) {
        forgetOldest();
    }
}

void CaptureRing::forgetBefore(std::uint64_t time) {
    while (!changes_.empty() && oldest_->time < time) {
        forgetOldest();
    }
}

void CaptureRing::forgetBeyond(std::uint64_t most) {
    auto const size = [this] {
        return CAPTURE_HEADER_SIZE + frameOf(0, Image(), oldest_->image).size() + bytes_;
    };
    while (!changes_.empty() && size() > most) {
        forgetOldest();
    }
}

void CaptureRing::drain(std::function<void(std::uint64_t time, Image const& image)> const& take) {
    while (oldest_) {
        take(oldest_->time, oldest_->image);
        if (changes_.empty()) {
            break;
        }
        forgetOldest();
    }
    oldest_.reset();
    newest_.reset();
}

void CaptureRing::forgetOldest() {
    std::string_view const frame = changes_.front().frame;
    auto const content = frame.substr(FRAME_HEAD_SIZE);
    oldest_ = Sample{changes_.front().time,
                     frameFrom(frame.substr(0, FRAME_HEAD_SIZE), content, oldest_->image).image};
    bytes_ -= frame.size();
    changes_.pop_front();
}

} // namespace qel::inspect
