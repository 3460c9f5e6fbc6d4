// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryFollower.h"

#include "reader/FollowedReader.h"

#include <new>
#include <utility>

namespace shm {

namespace {

/// Forwards to a visitor of the client, since a reader owns its visitor. It may outlive that visitor, and then forwards
/// nothing.
class ForwardingVisitor : public IQelSharedMemoryVisitor {
public:
    /// @param self set to this object, and to null by the destructor unless forget() was called before
    ForwardingVisitor(IQelSharedMemoryVisitor& visitor, ForwardingVisitor*& self)
        : visitor_(&visitor),
          self_(&self) {
        self = this;
    }
    ~ForwardingVisitor() override {
        if (self_ != nullptr) {
            *self_ = nullptr;
        }
    }
    ForwardingVisitor(ForwardingVisitor const&) = delete;
    ForwardingVisitor& operator=(ForwardingVisitor const&) = delete;

    /// To be called before the visitor is destroyed.
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
    ForwardingVisitor** self_;
};

/// Installs a client's visitor, and removes it in the destructor.
class ScopedVisitor {
public:
    ScopedVisitor(QelSharedMemoryReader& reader, IQelSharedMemoryVisitor& visitor) : reader_(reader) {
        reader_.visitor(std::make_unique<ForwardingVisitor>(visitor, forwarding_));
    }
    ~ScopedVisitor() {
        if (forwarding_ != nullptr) {
            forwarding_->forget();
        }
        try {
            reader_.visitor(nullptr);
        } catch (
            std::bad_alloc const&) { // NOLINT(bugprone-empty-catch): the remaining visitor forwards nothing
        }
    }
    ScopedVisitor(ScopedVisitor const&) = delete;
    ScopedVisitor& operator=(ScopedVisitor const&) = delete;

private:
    QelSharedMemoryReader& reader_;
    ForwardingVisitor* forwarding_ = nullptr; // owned by the reader; null once it is destroyed
};

} // namespace

QelSharedMemoryFollower::QelSharedMemoryFollower(unsigned int seconds, std::chrono::milliseconds maxAge,
                                                 Voided voided)
    : followed_(std::make_unique<FollowedReader>(seconds, maxAge, std::move(voided))) {}

QelSharedMemoryFollower::~QelSharedMemoryFollower() = default;

QelShmCondition QelSharedMemoryFollower::condition() {
    return followed_->refresh();
}

QelSharedMemoryReader* QelSharedMemoryFollower::reader() {
    return followed_->refresh() == QelShmCondition::Active ? followed_->get() : nullptr;
}

std::unique_ptr<QelShmMPnt> QelSharedMemoryFollower::mpnt(long long svid, bool force) {
    auto* const current = reader();
    auto point = current == nullptr ? nullptr : current->mpnt(svid, force);
    return point && (*point)->guid == svid ? std::move(point) : nullptr;
}

QelShmMVal QelSharedMemoryFollower::mval(long long svid, bool force) {
    auto* const current = reader();
    return current == nullptr ? QelShmMVal() : current->mval(svid, force);
}

QelShmMVal QelSharedMemoryFollower::mval(QelShmKeptMVal& kept) {
    auto* const current = reader();
    return current == nullptr ? QelShmMVal() : current->mval(kept);
}

bool QelSharedMemoryFollower::visit(IQelSharedMemoryVisitor& visitor,
                                    std::shared_ptr<IQelVisitorResult>& result) {
    auto* const current = followed_->isVisiting() ? nullptr : reader();
    if (current == nullptr) {
        return false;
    }
    FollowedReader::VisitGuard const guard(*followed_);
    ScopedVisitor const scoped(*current, visitor);
    current->visit(result);
    return true;
}

} // namespace shm
