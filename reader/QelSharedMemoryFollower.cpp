#include "reader/QelSharedMemoryFollower.h"

#include "reader/FollowedReader.h"

#include <utility>

namespace shm {

namespace {

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

} // namespace

QelSharedMemoryFollower::QelSharedMemoryFollower(unsigned int seconds, std::chrono::milliseconds maxAge,
                                                 Voided voided)
    : followed_(std::make_unique<FollowedReader>(seconds, maxAge, std::move(voided))) {}

QelSharedMemoryFollower::~QelSharedMemoryFollower() = default;

QelShmCondition QelSharedMemoryFollower::condition() {
    return followed_->look();
}

QelSharedMemoryReader* QelSharedMemoryFollower::reader() {
    return followed_->look() == QelShmCondition::Active ? followed_->get() : nullptr;
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

} // namespace shm
