#include "reader/QelSharedMemoryFollower.h"

#include "reader/NamedRegion.h"
#include "reader/busAnswers.h"

#include <exception>
#include <optional>
#include <utility>

namespace shm {

namespace {

using Clock = std::chrono::steady_clock;

/// Between two readers of which the first was never active: that of the polls for the hardware manager.
constexpr std::chrono::milliseconds readerPause{250};
/// Between two tries to reach the bus.
constexpr std::chrono::seconds busPause{1};

/// Lends a visitor to a reader, which owns its visitor.
class LentVisitor : public IQelSharedMemoryVisitor {
public:
    explicit LentVisitor(IQelSharedMemoryVisitor& visitor) : visitor_(visitor) {}
    void onRoot(QelShmRoot const& root, std::shared_ptr<IQelVisitorResult>& result) override {
        visitor_.onRoot(root, result);
    }
    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override {
        visitor_.onMPnt(point, depth, result);
    }
    void onMVal(QelShmMVal const& value, long long svid, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override {
        visitor_.onMVal(value, svid, depth, result);
    }
    bool mvFound() const override { return visitor_.mvFound(); }

private:
    IQelSharedMemoryVisitor& visitor_;
};

/// Installs a lent visitor, and none when it goes out of scope.
class Lending {
public:
    Lending(QelSharedMemoryReader& reader, IQelSharedMemoryVisitor& visitor) : reader_(reader) {
        reader_.visitor(std::make_unique<LentVisitor>(visitor));
    }
    ~Lending() { reader_.visitor(nullptr); }
    Lending(Lending const&) = delete;
    Lending& operator=(Lending const&) = delete;

private:
    QelSharedMemoryReader& reader_;
};

bool isLaidOut(QelShmCondition condition) {
    return condition == QelShmCondition::Active || condition == QelShmCondition::Silent;
}

} // namespace

struct QelSharedMemoryFollower::State {
    unsigned int const seconds;
    std::chrono::milliseconds const maxAge;
    Voided const voided;

    std::unique_ptr<QelSharedMemoryReader> reader{};
    bool isSound = false;             ///< the region was Active at the last look, so there may be handles
    bool wasLaidOut = false;          ///< with this reader
    bool isOver = false;              ///< the writer of what the reader has seen has ended
    std::uint64_t changed = 0;        ///< of the object, when this reader saw it laid out
    std::optional<ObjectId> locked{}; ///< the last object that was seen locked, by whichever reader
    Clock::time_point nextReader{};
    Clock::time_point nextProbe{};
};

QelSharedMemoryFollower::QelSharedMemoryFollower(unsigned int seconds, std::chrono::milliseconds maxAge,
                                                 Voided voided)
    : state_(new State{seconds, maxAge, std::move(voided)}) {}

QelSharedMemoryFollower::~QelSharedMemoryFollower() = default;

QelShmCondition QelSharedMemoryFollower::condition() {
    return look();
}

QelSharedMemoryReader* QelSharedMemoryFollower::reader() {
    return look() == QelShmCondition::Active ? state_->reader.get() : nullptr;
}

std::unique_ptr<QelShmMPnt> QelSharedMemoryFollower::mpnt(long long svid, bool force) {
    auto* const sound = reader();
    auto point = sound == nullptr ? nullptr : sound->mpnt(svid, force);
    return point && (*point)->guid == svid ? std::move(point) : nullptr;
}

QelShmMVal QelSharedMemoryFollower::mval(long long svid, bool force) {
    auto* const sound = reader();
    return sound == nullptr ? QelShmMVal() : sound->mval(svid, force);
}

QelShmMVal QelSharedMemoryFollower::mval(QelShmKeptMVal& kept) {
    auto* const sound = reader();
    return sound == nullptr ? QelShmMVal() : sound->mval(kept);
}

bool QelSharedMemoryFollower::visit(IQelSharedMemoryVisitor& visitor,
                                    std::shared_ptr<IQelVisitorResult>& result) {
    auto* const sound = reader();
    if (sound == nullptr) {
        return false;
    }
    Lending const lending(*sound, visitor);
    sound->visit(result);
    return true;
}

QelShmCondition QelSharedMemoryFollower::look() {
    NamedRegion const named;
    if (named.isLocked()) {
        state_->locked = named.id();
    }
    auto condition = judge(named);
    if (wantsAnotherReader(condition, named)) {
        leave(state_->isOver && isLaidOut(condition) ? QelShmCondition::Gone : condition);
        makeReader();
        condition = judge(named);
    }
    if (state_->isOver && isLaidOut(condition)) {
        condition = QelShmCondition::Gone; // until there is another reader
    }
    if (condition == QelShmCondition::Active) {
        state_->isSound = true;
    } else {
        leave(condition);
    }
    return condition;
}

/// What the reader says, and what other readers have seen before. Notes whether the writer has ended meanwhile.
/// @param named a look that is not younger than the reader's own
QelShmCondition QelSharedMemoryFollower::judge(NamedRegion const& named) {
    auto& state = *state_;
    if (!state.reader) {
        return QelShmCondition::Gone;
    }
    auto condition = state.reader->condition(state.maxAge);
    if (condition != QelShmCondition::Replaced && state.locked && state.locked == named.id() &&
        !named.isLocked()) {
        condition = QelShmCondition::Gone;
    }
    if (!isLaidOut(condition)) {
        state.isOver = state.isOver || state.wasLaidOut;
        return condition;
    }
    if (!state.wasLaidOut) {
        state.wasLaidOut = true;
        state.changed = named.changed();
        state.reader->syncPositions(true); // other readers of the process may have the counter at 0 already
    }
    state.isOver = state.isOver || state.changed != named.changed();
    return condition;
}

bool QelSharedMemoryFollower::wantsAnotherReader(QelShmCondition condition, NamedRegion const& named) {
    auto& state = *state_;
    auto const now = Clock::now();
    if (!state.reader) {
        return now >= state.nextReader;
    }
    if (state.reader->hasLostItsBus() && now >= state.nextProbe) {
        state.nextProbe = now + busPause;
        return busAnswers();
    }
    bool const isUseless = condition == QelShmCondition::Replaced || (state.isOver && isLaidOut(condition)) ||
                           (state.reader->willMapNothing() && named.exists());
    return isUseless && (state.wasLaidOut || now >= state.nextReader);
}

/// Tells that handles became void, if there may be any.
void QelSharedMemoryFollower::leave(QelShmCondition condition) {
    if (std::exchange(state_->isSound, false) && state_->voided) {
        state_->voided(condition);
    }
}

void QelSharedMemoryFollower::makeReader() {
    auto& state = *state_;
    state.reader
        .reset(); // before the next one, since a closed connection is shared until its last user has gone
    state.wasLaidOut = false;
    state.isOver = false;
    try {
        state.reader = std::make_unique<QelSharedMemoryReader>(state.seconds, false);
        state.nextReader = Clock::now() + readerPause;
    } catch (std::exception const&) {
        state.nextReader = Clock::now() + busPause; // the reader has logged why
    }
}

} // namespace shm
