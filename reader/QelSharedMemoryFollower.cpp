// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryFollower.h"

#include "reader/FollowedReader.h"

#include <new>
#include <utility>

namespace shm {

namespace {

/// Lends a visitor to a reader, which owns its visitor. It may outlive what it lends, and then tells nobody.
class LentVisitor : public IQelSharedMemoryVisitor {
public:
    /// @param self becomes null at the end of this object, unless that comes after forget()
    LentVisitor(IQelSharedMemoryVisitor& visitor, LentVisitor*& self) : visitor_(&visitor), self_(&self) {
        self = this;
    }
    ~LentVisitor() override {
        if (self_ != nullptr) {
            *self_ = nullptr;
        }
    }
    LentVisitor(LentVisitor const&) = delete;
    LentVisitor& operator=(LentVisitor const&) = delete;

    /// To be called before the visitor is gone.
    void forget() {
        visitor_ = nullptr;
        self_ = nullptr;
    }

    void onRoot(QelShmRoot const& root, std::shared_ptr<IQelVisitorResult>& result) override {
        if (visitor_ != nullptr) {
            visitor_->onRoot(root, result);
        }
    }
    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override {
        if (visitor_ != nullptr) {
            visitor_->onMPnt(point, depth, result);
        }
    }
    void onMVal(QelShmMVal const& value, long long svid, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override {
        if (visitor_ != nullptr) {
            visitor_->onMVal(value, svid, depth, result);
        }
    }
    bool mvFound() const override { return visitor_ == nullptr || visitor_->mvFound(); }

private:
    IQelSharedMemoryVisitor* visitor_;
    LentVisitor** self_;
};

/// Installs a lent visitor, and none when it goes out of scope.
class Lending {
public:
    Lending(QelSharedMemoryReader& reader, IQelSharedMemoryVisitor& visitor) : reader_(reader) {
        reader_.visitor(std::make_unique<LentVisitor>(visitor, lent_));
    }
    ~Lending() {
        if (lent_ != nullptr) {
            lent_->forget();
        }
        try {
            reader_.visitor(nullptr);
        } catch (std::bad_alloc const&) { // NOLINT(bugprone-empty-catch): the visitor that stays tells nobody
        }
    }
    Lending(Lending const&) = delete;
    Lending& operator=(Lending const&) = delete;

private:
    QelSharedMemoryReader& reader_;
    LentVisitor* lent_ = nullptr; // the reader's; null once that has destroyed it
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
    auto* const sound = followed_->isLent() ? nullptr : reader();
    if (sound == nullptr) {
        return false;
    }
    FollowedReader::Loan const loan(*followed_);
    Lending const lending(*sound, visitor);
    sound->visit(result);
    return true;
}

} // namespace shm
