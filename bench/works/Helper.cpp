// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/works/Helper.h"

#include <ctime>
#include <new>
#include <stdexcept>
#include <string_view>

namespace bench {

namespace {

/// A name that no other helper has.
std::string newObjectName() {
    static unsigned int count = 0;
    return "bench-helper-" + std::to_string(count++);
}

Control& newControl(void* memory) {
    auto& control = *new (memory) Control{};
    sem_init(&control.start, 1, 0);
    sem_init(&control.done, 1, 0);
    return control;
}

} // namespace

Helper::Helper(std::string const& role, std::string const& contender, Shape const& shape)
    : object_(newObjectName(), sizeof(Control), SharedObject::Access::Create),
      control_(newControl(object_.data())),
      process_({ownProgram(), helperOption, role, contender, std::string(shape.name), object_.name()}) {
    spinUntil([this] { return control_.ready.load(); });
}

Helper::~Helper() {
    control_.quit = true;
    control_.stop = true;
    sem_post(&control_.start);
    process_.waitForEnd();
}

template <typename Condition>
void Helper::spinUntil(Condition const& condition) const {
    constexpr unsigned int patience = 1U << 20U;
    for (unsigned int spins = 0; !condition(); ++spins) {
        if (spins % patience == patience - 1 && !process_.running()) {
            throw std::runtime_error("a helper process has ended");
        }
    }
}

void Helper::start() {
    auto const before = control_.rounds.load();
    control_.stop = false;
    sem_post(&control_.start);
    spinUntil([&] { return control_.rounds.load() != before; });
}

void Helper::stop() {
    constexpr time_t patience = 60;
    control_.stop = true;
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += patience;
    if (sem_timedwait(&control_.done, &deadline) != 0) {
        throw std::runtime_error("a helper process does not stop");
    }
}

void Helper::waitUntilSeen(std::uint64_t changes) const {
    spinUntil([&] { return control_.seen.load(std::memory_order_relaxed) >= changes; });
}

void runHelper(std::vector<HelperRole> const& roles, int argc, char const* const* argv) {
    constexpr int arguments = 6;
    if (argc != arguments) {
        throw std::invalid_argument("a helper is told its role, contender, shape and control object");
    }
    std::string_view const role = argv[2];
    std::string_view const contender = argv[3];
    for (auto const& known : roles) {
        if (known.role == role && known.contender == contender) {
            SharedObject const object(argv[5], sizeof(Control), SharedObject::Access::ReadWrite);
            known.run(Plan(shapeNamed(argv[4])), *static_cast<Control*>(object.data()));
            return;
        }
    }
    throw std::invalid_argument("no helper has that role for that contender");
}

} // namespace bench
