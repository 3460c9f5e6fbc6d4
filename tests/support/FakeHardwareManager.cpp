// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/FakeHardwareManager.h"

#include <stdexcept>
#include <utility>

namespace qel::test {

namespace {

struct ContextRelease {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
};

/// Makes a main context the thread's default one while the object lives.
class ThreadDefault {
public:
    explicit ThreadDefault(GMainContext* context) : context_(context) {
        g_main_context_push_thread_default(context_);
    }
    ~ThreadDefault() { g_main_context_pop_thread_default(context_); }
    ThreadDefault(ThreadDefault const&) = delete;
    ThreadDefault& operator=(ThreadDefault const&) = delete;

private:
    GMainContext* context_;
};

} // namespace

FakeHardwareManager::FakeHardwareManager(bool present) : answer_([](unsigned int) { return 1; }) {
    std::unique_ptr<GMainContext, ContextRelease> const context(g_main_context_new());
    {
        ThreadDefault const here(context.get());
        service_.emplace([this] { return answer(); });
    }
    loop_ = std::make_unique<MainLoopThread>(context.get());
    if (present) {
        ownName();
    }
}

FakeHardwareManager::~FakeHardwareManager() {
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        closing_ = true;
    }
    changed_.notify_all();
    loop_.reset();
}

int FakeHardwareManager::answer() {
    std::unique_lock<std::mutex> lock(mutex_);
    unsigned int const call = ++calls_;
    changed_.notify_all();
    changed_.wait_for(lock, delay_, [&] { return closing_; });
    if (!error_.empty()) {
        throw std::runtime_error(error_);
    }
    return answer_(call);
}

void FakeHardwareManager::setAnswer(int state) {
    setAnswer([state](unsigned int) { return state; });
}

void FakeHardwareManager::setAnswer(std::function<int(unsigned int call)> answer) {
    std::lock_guard<std::mutex> const lock(mutex_);
    answer_ = std::move(answer);
}

void FakeHardwareManager::setError(std::string message) {
    std::lock_guard<std::mutex> const lock(mutex_);
    error_ = std::move(message);
}

void FakeHardwareManager::setDelay(std::chrono::milliseconds delay) {
    std::lock_guard<std::mutex> const lock(mutex_);
    delay_ = delay;
}

unsigned int FakeHardwareManager::calls() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return calls_;
}

bool FakeHardwareManager::waitForCalls(unsigned int calls, std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return calls_ >= calls; });
}

void FakeHardwareManager::emitStructureChanged() {
    service_->announceStructureChange();
    g_dbus_connection_flush_sync(service_->connection(), nullptr, nullptr);
}

void FakeHardwareManager::emitSignal(std::string const& path, std::string const& interface,
                                     std::string const& name) {
    GError* failure = nullptr;
    g_dbus_connection_emit_signal(service_->connection(), nullptr, path.c_str(), interface.c_str(),
                                  name.c_str(), nullptr, &failure);
    if (shm::GErrorPtr const error{failure}) {
        throw std::runtime_error(error->message);
    }
    g_dbus_connection_flush_sync(service_->connection(), nullptr, nullptr);
}

} // namespace qel::test
