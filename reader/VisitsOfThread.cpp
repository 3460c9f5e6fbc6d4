#include "reader/VisitsOfThread.h"

#include <type_traits>
#include <utility>

namespace shm {

namespace {

// Ready in every phase of a thread's life, also while its other variables are destroyed.
thread_local VisitsOfThread visits;
static_assert(std::is_trivially_destructible_v<VisitsOfThread>);

/// Gives a thread's memory back at its end. Visits that come later still, from destructors, begin anew.
struct ReleaseAtThreadEnd {
    ~ReleaseAtThreadEnd() { visits.positions().release(); }
};

} // namespace

VisitsOfThread& VisitsOfThread::get() {
    return visits;
}

void VisitsOfThread::releaseAtEnd() {
    thread_local ReleaseAtThreadEnd const release;
    isReleasedAtEnd_ = true;
}

void VisitsOfThread::retire(std::unique_ptr<RetiredVisitor> visitor) {
    if (isInCallback()) {
        visitor->next.reset(std::exchange(retired_, nullptr));
        retired_ = visitor.release();
    }
}

void VisitsOfThread::destroyRetired() {
    // One by one: a visitor's destructor may visit, too.
    while (auto const oldest = std::unique_ptr<RetiredVisitor>(std::exchange(retired_, nullptr))) {
        retired_ = oldest->next.release();
    }
}

} // namespace shm
