// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A LED file whose opening hangs.

#include "states/QelStateLedThread.h"
#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/support/LedFiles.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace qel::test {

namespace {

using namespace std::chrono_literals;

/// A named pipe in the place of a file: who opens it for writing waits.
class HangingFile {
public:
    explicit HangingFile(std::string path) : path_(std::move(path)) {
        std::filesystem::remove(path_);
        if (::mkfifo(path_.c_str(), 0644) != 0) {
            throw std::system_error(errno, std::generic_category(), path_);
        }
    }
    ~HangingFile() {
        ::close(reader_);
        std::filesystem::remove(path_);
    }
    HangingFile(HangingFile const&) = delete;
    HangingFile& operator=(HangingFile const&) = delete;

    /// From now on it can be opened and written.
    void release() { reader_ = ::open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC); }

private:
    std::string path_;
    int reader_ = -1;
};

/// True when the call returns while the file still hangs; releases the file after that, so that all threads can end.
bool returnsWhileHanging(HangingFile& file, std::function<void()> const& call) {
    auto const done = std::async(std::launch::async, call);
    bool const inTime = done.wait_for(5s) == std::future_status::ready;
    file.release();
    return inTime;
}

LogEntry const writesRed{"qel.shm.access.states", log4cpp::Priority::DEBUG,
                         "update: color = 0, old = 0, new = 0x1"};

} // namespace

TEST(HangingLed, Request_DoesNotWaitForTheFile) {
    restoreLedFiles();
    LogCapture const log;
    std::optional<HangingFile> red; // outlives the thread that writes into it
    shm::QelStateLedThread sut;
    red.emplace(ledFile("red"));
    sut.start();
    sut.request(eStatus_ChildAlarm);
    EXPECT_TRUE(log.waitFor(writesRed));
    EXPECT_TRUE(returnsWhileHanging(*red, [&] { sut.request(eStatus_On); }));
    EXPECT_TRUE(log.waitFor(
        {"qel.shm.access.states", log4cpp::Priority::INFO, "run: state change Child Alarm => On"}))
        << "what was asked for meanwhile is shown then";
    sut.join();
}

TEST(HangingLed, PropagateStates_DoesNotWaitForTheFile) {
    restoreLedFiles();
    LogCapture const log;
    constexpr long long point = 0x0100FFFFFFFF0000;
    std::optional<HangingFile> red; // outlives the writer
    shm::QelSharedMemoryWriter sut;
    std::map<long long, shm::MPDef, shm::SvidCmp> unit;
    unit[point].mvs = {{shm::key::voltage, 0}};
    ASSERT_TRUE(sut.addStructure(unit));
    sut.setActive();
    auto const set = [&](eStatus_Bits state) {
        return sut.updateMV(point | shm::key::voltage,
                            std::make_unique<measval::MeasureValue>(230.0, std::uint64_t{1}, state));
    };

    red.emplace(ledFile("red"));
    EXPECT_TRUE(set(eStatus_HighAlarm));
    sut.propagateStates();
    EXPECT_TRUE(log.waitFor(writesRed));
    EXPECT_TRUE(set(eStatus_NoError));
    EXPECT_TRUE(returnsWhileHanging(*red, [&] { sut.propagateStates(); }));
    EXPECT_EQ(sut.root()->state, eStatus_On);
}

} // namespace qel::test
