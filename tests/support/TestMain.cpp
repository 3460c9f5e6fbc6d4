// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs a test program. What the library logs goes to the descriptor that run-test names, so that it can be shown when a
/// test fails or crashes.
#include <gtest/gtest.h>

#include <log4cpp/Category.hh>
#include <log4cpp/FileAppender.hh>

#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// Drops a line for which there is no memory: log4cpp ends the process when an appender throws, and some tests let memory
/// end.
class LenientAppender : public log4cpp::FileAppender {
public:
    using FileAppender::FileAppender;

protected:
    void _append(log4cpp::LoggingEvent const& event) override {
        try {
            FileAppender::_append(event);
        } catch (std::bad_alloc const&) {
            return;
        }
    }
};

/// The descriptor is closed for programs that a test starts.
void logToCaller() {
    char const* const given = std::getenv("QEL_TEST_LOG");
    if (given == nullptr) {
        return;
    }
    int const descriptor = std::stoi(given);
    ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    auto appender = std::make_unique<LenientAppender>("caller of the test", descriptor);
    log4cpp::Category::getRoot().addAppender(appender.release());
}

/// Whether tools/surroundings started the program: then the region's name is the program's own.
bool isInSurroundings() {
    char const* const bus = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    return bus != nullptr && std::string(bus) == "unix:path=/sys/bus";
}

/// Lets each test begin without anything under the region's name, whatever the one before in this process has left.
class FreeName : public testing::EmptyTestEventListener {
    void OnTestStart(testing::TestInfo const& /*test*/) override {
        ::shm_unlink("QelSharedMemory");
        ::rmdir("/dev/shm/QelSharedMemory");
    }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (isInSurroundings()) {
        testing::UnitTest::GetInstance()->listeners().Append(std::make_unique<FreeName>().release());
    }
    logToCaller();
    return RUN_ALL_TESTS();
}
