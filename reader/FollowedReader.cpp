// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/FollowedReader.h"

#include "reader/busAnswers.h"

#include <exception>
#include <utility>

namespace shm {

namespace {

/// Between two readers when the first one saw no active region: the interval of the polls for the hardware manager.
constexpr std::chrono::milliseconds readerPause{250};
/// Between two attempts to reach the bus.
constexpr std::chrono::seconds busPause{1};

bool isLaidOut(QelShmCondition condition) {
    return condition == QelShmCondition::Active || condition == QelShmCondition::Silent;
}

} // namespace

FollowedReader::FollowedReader(unsigned int seconds, std::chrono::milliseconds maxAge,
                               std::function<void(QelShmCondition)> voided)
    : seconds_(seconds),
      maxAge_(maxAge),
      voided_(std::move(voided)) {}

QelShmCondition FollowedReader::refresh() {
    NamedRegion const named;
    if (named.isLocked()) {
        locked_ = named.id();
    }
    auto condition = judge(named);
    if (needsNewReader(condition, named)) {
        reportVoid(isOver_ && isLaidOut(condition) ? QelShmCondition::Gone : condition);
        makeReader();
        condition = judge(NamedRegion());
    }
    if (isOver_ && isLaidOut(condition)) {
        condition = QelShmCondition::Gone; // until there is a new reader
    }
    if (condition == QelShmCondition::Active) {
        mayHaveHandles_ = true;
    } else {
        reportVoid(condition);
    }
    return condition;
}

/// Combines the reader's condition with what earlier readers have seen. Notes whether the writer has ended.
/// @param named examined just now
QelShmCondition FollowedReader::judge(NamedRegion const& named) {
    if (!reader_) {
        return QelShmCondition::Gone;
    }
    auto condition = reader_->conditionAt(named, maxAge_);
    if (condition != QelShmCondition::Replaced && locked_ && locked_ == named.id() && named.isUnlocked()) {
        condition = QelShmCondition::Gone;
    }
    if (!isLaidOut(condition)) {
        isOver_ = isOver_ || wasLaidOut_;
        return condition;
    }
    if (!wasLaidOut_) {
        wasLaidOut_ = true;
        changed_ = named.changed();
        reader_->syncPositions(true); // other readers of the process may have set the counter to 0 already
    }
    isOver_ = isOver_ || changed_ != named.changed();
    return condition;
}

bool FollowedReader::needsNewReader(QelShmCondition condition, NamedRegion const& named) {
    if (isVisiting_) {
        return false;
    }
    auto const now = Clock::now();
    if (!reader_) {
        return now >= nextReader_;
    }
    if (reader_->hasLostItsBus() && now >= nextProbe_) {
        nextProbe_ = now + busPause;
        return busAnswers();
    }
    bool const isUseless = condition == QelShmCondition::Replaced || (isOver_ && isLaidOut(condition)) ||
                           (reader_->willMapNothing() && named.exists());
    return isUseless && (wasLaidOut_ || now >= nextReader_);
}

/// Calls the callback that handles became void, if there may be any.
void FollowedReader::reportVoid(QelShmCondition condition) {
    if (std::exchange(mayHaveHandles_, false) && voided_) {
        voided_(condition);
    }
}

void FollowedReader::makeReader() {
    reader_
        .reset(); // before the next one, since all readers share a closed connection until the last one ends
    wasLaidOut_ = false;
    isOver_ = false;
    try {
        reader_ = std::make_unique<QelSharedMemoryReader>(seconds_, false);
        nextReader_ = Clock::now() + readerPause;
    } catch (std::exception const&) {
        nextReader_ = Clock::now() + busPause; // the reader has logged why
    }
}

} // namespace shm
