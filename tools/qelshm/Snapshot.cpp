#include "tools/qelshm/Snapshot.h"

#include "reader/BaseQelShmVisitor.h"
#include "reader/IQelVisitorResult.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRoot.h"

#include <memory>

namespace qel::tools {

namespace {

PointView emptyView(shm::QelShmMPnt const& point, unsigned depth) {
    return {point->guid, depth, point.tstr(), point->state, {}};
}

class SnapshotVisitor : public shm::BaseQelShmVisitor {
public:
    explicit SnapshotVisitor(Snapshot& snapshot) : snapshot_(&snapshot) {}

    void onRoot(shm::QelShmRoot const& root, std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        if (root) {
            snapshot_->globalState = root->state;
        }
    }

    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        snapshot_->points.push_back(emptyView(point, depth));
    }

    // The values of a point follow the point.
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        snapshot_->points.back().values.push_back(*value);
    }

private:
    Snapshot* snapshot_;
};

} // namespace

std::size_t Snapshot::valueCount() const {
    std::size_t count = 0;
    for (auto const& point : points) {
        count += point.values.size();
    }
    return count;
}

Snapshot takeSnapshot(shm::QelSharedMemoryReader& reader) {
    Snapshot snapshot;
    reader.visitor(std::make_unique<SnapshotVisitor>(snapshot));
    reader.visit();
    reader.visitor(nullptr);
    return snapshot;
}

PointView viewOf(shm::QelSharedMemoryReader const& reader, shm::QelShmMPnt const& point) {
    constexpr unsigned topLevel = 1;
    auto view = emptyView(point, topLevel);
    for (auto const& value : reader.mvs(point->mvs)) {
        view.values.push_back(*value);
    }
    return view;
}

} // namespace qel::tools
