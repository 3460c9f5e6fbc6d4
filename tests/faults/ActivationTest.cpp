// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A hardware manager that the bus is to start, and cannot.

#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/faults/MortalBus.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/MainLoopThread.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::LogCapture;
using qel::test::MainLoopThread;
using shm::QelSharedMemoryReader;

/// Lets the bus start the manager by a program that fails, and gives the configuration of that bus.
std::string failingActivation() {
    std::filesystem::create_directory("/sys/services");
    std::ofstream("/sys/services/org.qel.HardwareManager.service")
        << "[D-BUS Service]\nName=org.qel.HardwareManager\nExec=/bin/false\n";
    std::ifstream plain("/sys/bus.conf");
    std::string config{std::istreambuf_iterator<char>(plain), std::istreambuf_iterator<char>()};
    config.insert(config.rfind("</busconfig>"), "<servicedir>/sys/services</servicedir>\n");
    std::ofstream("/sys/activating-bus.conf") << config;
    return "/sys/activating-bus.conf";
}

TEST(FailingActivation, OfTheManager_LeavesTheSubscription) {
    qel::test::MortalBus const bus(failingActivation());
    MainLoopThread const loop;
    FakeHardwareManager manager;
    QelSharedMemoryReader sut(0, false);
    LogCapture const log;

    manager.releaseName();
    testing::internal::CaptureStderr();
    EXPECT_TRUE(eventually([&] { return !sut.initialized(); })) << "once the proxy has heard of it";
    EXPECT_NE(std::string::npos,
              testing::internal::GetCapturedStderr().find("The attempt to get a new proxy failed with: "));
    EXPECT_TRUE(log.contains(qel::test::noProxy()));

    manager.ownName();
    manager.emitStructureChanged();
    EXPECT_TRUE(eventually([&] { return sut.modifications() == 1; }));
    EXPECT_TRUE(sut.initialized());
}

} // namespace
