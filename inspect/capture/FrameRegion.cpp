// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/FrameRegion.h"

#include <algorithm>
#include <cstring>

namespace qel::inspect {

namespace {

/// Of a record, counted in words: where a word lies that hold neither state nor structure.
constexpr std::size_t pointWords = sizeof(shm::record::QelShmMP) / CAPTURE_WORD_SIZE;
constexpr std::size_t pointTime = offsetof(shm::record::QelShmMP, at) / CAPTURE_WORD_SIZE;
constexpr std::size_t valueWords = sizeof(shm::record::QelShmMVal) / CAPTURE_WORD_SIZE;
constexpr std::size_t valueNumber = offsetof(shm::record::QelShmMVal, value) / CAPTURE_WORD_SIZE;
constexpr std::size_t valueTime = offsetof(shm::record::QelShmMVal, at) / CAPTURE_WORD_SIZE;
constexpr std::size_t firstValue = offsetof(shm::record::Region, values) / CAPTURE_WORD_SIZE;
constexpr std::size_t rootWord = offsetof(shm::record::Region, root) / CAPTURE_WORD_SIZE;

} // namespace

FrameRegion::FrameRegion() : region_(std::make_unique<shm::record::Region>()) {
    std::memset(static_cast<void*>(region_.get()), shm::WIPE_BYTE, shm::REGION_SIZE);
}

void FrameRegion::apply(CheckedFrame const& frame) {
    auto const before = kept();
    hasChangedStates_ = frame.size != size_;
    hasClearedTimes_ = false;
    size_ = frame.size;
    auto* const bytes = reinterpret_cast<unsigned char*>(region_.get());
    if (kept() < before) {
        std::memset(bytes + kept(), shm::WIPE_BYTE, before - kept());
    }
    forEachRun(frame, [&](std::size_t word, std::string_view words) { store(word, words); });
}

Image FrameRegion::image() const {
    return {std::make_unique<shm::record::Region>(*region_), size_};
}

bool FrameRegion::isActive() const {
    return size_ >= shm::REGION_SIZE && region_->root.version == shm::ACTIVE_VERSION;
}

std::size_t FrameRegion::kept() const {
    return static_cast<std::size_t>(std::min<std::uint64_t>(size_, shm::REGION_SIZE));
}

void FrameRegion::store(std::size_t word, std::string_view words) {
    auto const offset = word * CAPTURE_WORD_SIZE;
    auto const count = std::min(words.size(), kept() - std::min(kept(), offset));
    std::memcpy(reinterpret_cast<unsigned char*>(region_.get()) + offset, words.data(), count);
    for (auto const end = word + words.size() / CAPTURE_WORD_SIZE; word < end; ++word) {
        note(word);
    }
}

void FrameRegion::note(std::size_t word) {
    if (word < firstValue) {
        hasChangedStates_ = hasChangedStates_ || word % pointWords != pointTime;
    } else if (word < rootWord) {
        auto const field = (word - firstValue) % valueWords;
        bool const isTime = field == valueTime;
        hasChangedStates_ = hasChangedStates_ || (!isTime && field != valueNumber);
        hasClearedTimes_ =
            hasClearedTimes_ || (isTime && region_->values[(word - firstValue) / valueWords].at == 0);
    } else {
        hasChangedStates_ = true;
    }
}

} // namespace qel::inspect
