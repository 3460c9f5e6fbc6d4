// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/AlarmCaptures.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace qel::inspect {

AlarmCaptures::AlarmCaptures(Name name, std::chrono::milliseconds before, std::chrono::milliseconds after,
                             CaptureBounds bounds, AlarmEdges alarms)
    : name_(std::move(name)),
      before_(static_cast<std::uint64_t>(before.count())),
      after_(static_cast<std::uint64_t>(after.count())),
      bounds_(bounds),
      alarms_(std::move(alarms)) {}

void AlarmCaptures::tryFile(std::uint64_t time) const {
    auto const file = name_(time);
    CaptureWriter const writer(file, time);
    ::unlink(file.c_str());
}

void AlarmCaptures::append(std::uint64_t time, Image const& image) {
    bool const isAlarm = alarms_.add(image);
    if (writer_ && time > end_ && !isAlarm) {
        close();
    }
    if (isAlarm) {
        end_ = time + after_;
    }
    if (writer_) {
        write(time, image);
        if (writer_ || !isAlarm) {
            return;
        }
    }
    ring_.add(time, image);
    ring_.forgetBefore(time - std::min(time, before_));
    if (isAlarm) {
        begin(time);
    }
}

void AlarmCaptures::close() {
    if (writer_) {
        writer_->close();
        bytes_ += writer_->size();
        writer_.reset();
    }
}

void AlarmCaptures::begin(std::uint64_t time) {
    auto const file = name_(time);
    bool isFirst = true;
    if (bounds_.size != 0) {
        ring_.forgetBeyond(bounds_.size);
    }
    ring_.drain([&](std::uint64_t sampleTime, Image const& image) {
        if (isFirst) {
            writer_.emplace(file, sampleTime);
            files_.push_back(file);
            start_ = sampleTime;
            isFirst = false;
        }
        write(sampleTime, image);
    });
    if (bounds_.files != 0 && files_.size() > bounds_.files) {
        if (::unlink(files_.front().c_str()) != 0 && errno != ENOENT) {
            throw CaptureError("cannot remove " + files_.front() + ": " +
                               std::generic_category().message(errno));
        }
        files_.erase(files_.begin());
    }
}

void AlarmCaptures::write(std::uint64_t time, Image const& image) {
    if (bounds_.size == 0) {
        writer_->append(time - start_, image);
    } else if (!writer_->appendWithin(bounds_.size, time - start_, image)) {
        close();
        return;
    }
    ++samples_;
}

} // namespace qel::inspect
