#include "reader/VisitsOfThread.h"

#include <pthread.h>

#include <new>
#include <system_error>
#include <type_traits>
#include <utility>

namespace shm {

namespace {

// Ready in every phase of a thread's life, also while its other variables are destroyed.
thread_local VisitsOfThread visits;
static_assert(std::is_trivially_destructible_v<VisitsOfThread>);

/// Called at the end of each thread but the last one. Visits that come later still, from destructors, begin anew.
void releasePositions(void* positions) {
    static_cast<PositionStack*>(positions)->release();
}

pthread_key_t createKey() {
    pthread_key_t key{};
    if (int const errnum = pthread_key_create(&key, releasePositions); errnum != 0) {
        throw std::system_error(errnum, std::generic_category(), "pthread_key_create");
    }
    return key;
}

} // namespace

VisitsOfThread& VisitsOfThread::get() {
    return visits;
}

void VisitsOfThread::releaseAtEnd() {
    // Not a destructor of a thread's variable: registering one ends the process when memory has ended.
    static pthread_key_t const key = createKey();
    if (pthread_setspecific(key, &positions_) != 0) {
        throw std::bad_alloc();
    }
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
