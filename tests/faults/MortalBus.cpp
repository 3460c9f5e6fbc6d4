// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/faults/MortalBus.h"

#include <csignal>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

constexpr char address[] = "unix:path=/sys/mortal-bus";

} // namespace

MortalBus::MortalBus(std::string config) : address_(address), config_(std::move(config)) {
    start();
}

void MortalBus::kill() {
    daemon_->signal(SIGKILL);
    daemon_->wait();
}

void MortalBus::start() {
    daemon_.emplace(std::vector<std::string>{"dbus-daemon", "--config-file=" + config_, "--nofork",
                                             "--nopidfile", "--print-address",
                                             std::string("--address=") + address});
    if (!daemon_->readLine()) {
        throw std::runtime_error("the bus of the test did not get ready");
    }
}

void surviveBusLoss() {
    g_dbus_connection_set_exit_on_close(sharedConnection().get(), FALSE);
}

} // namespace qel::test
