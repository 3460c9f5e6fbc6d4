// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/QelStateLedThread.h"

#include "states/LedSequence.h"
#include "tests/support/Eventually.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/LedFiles.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/ScarceMemory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/mount.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace std::chrono_literals;
using qel::test::contentOf;
using qel::test::eventually;
using qel::test::inForkedChild;
using qel::test::ledContents;
using qel::test::ledDevice;
using qel::test::ledFile;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::ScarceMemory;
using ::testing::ElementsAre;
using Clock = std::chrono::steady_clock;

constexpr char const* category = "qel.shm.access.states";

LogEntry failedWrite(std::string const& level, std::string const& color) {
    return {category, log4cpp::Priority::WARN,
            "update: failed to write " + level + " into " + ledFile(color)};
}

/// Ticks when told to.
class SteppedLed : public shm::QelStateLedThread {
public:
    void tick() { QelStateLedThread::tick(sequence_); }

private:
    shm::LedSequence sequence_{shm::ledTables, eStatus_On};
};

class QelStateLedThreadTest : public ::testing::Test {
protected:
    QelStateLedThreadTest() { qel::test::restoreLedFiles(); }
    ~QelStateLedThreadTest() override { qel::test::restoreLedFiles(); }

    LogCapture log;
};

/// A file that even root cannot write.
class ReadOnlyFile {
public:
    explicit ReadOnlyFile(std::string path) : path_(std::move(path)) {
        mounted_ = ::mount(path_.c_str(), path_.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
                   ::mount(nullptr, path_.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
    }
    ~ReadOnlyFile() { ::umount2(path_.c_str(), MNT_DETACH); }
    ReadOnlyFile(ReadOnlyFile const&) = delete;
    ReadOnlyFile& operator=(ReadOnlyFile const&) = delete;

    bool mounted() const { return mounted_; }

private:
    std::string path_;
    bool mounted_ = false;
};

TEST_F(QelStateLedThreadTest, IsAThreadWithVirtualDestructor) {
    static_assert(std::is_base_of_v<Thread, shm::QelStateLedThread>);
    static_assert(std::has_virtual_destructor_v<shm::QelStateLedThread>);
    static_assert(!std::is_copy_constructible_v<shm::QelStateLedThread>);
    std::unique_ptr<Thread> const sut = std::make_unique<shm::QelStateLedThread>();
    sut->start();
    sut->join();
    EXPECT_EQ(ledContents(), "0/1/0");
}

TEST_F(QelStateLedThreadTest, Construction_MakesTheLedGreen) {
    qel::test::markLedFiles();
    SteppedLed const sut;
    EXPECT_EQ(contentOf("/sys/class/leds/red/brightness"), "0");
    EXPECT_EQ(contentOf("/sys/class/leds/green/brightness"), "1");
    EXPECT_EQ(contentOf("/sys/class/leds/blue/brightness"), "0");
    EXPECT_THAT(
        log.entries(),
        ElementsAre(LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0, old = 0, new = 0"},
                    LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0x1, new = 0x1"},
                    LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x2, old = 0, new = 0"}));
}

TEST_F(QelStateLedThreadTest, Construction_WithoutFilesWarnsAndThrowsNothing) {
    std::filesystem::remove_all("/sys/class/leds/red");
    std::filesystem::remove_all("/sys/class/leds/green");
    std::filesystem::remove_all("/sys/class/leds/blue");
    EXPECT_NO_THROW(SteppedLed const sut);
    EXPECT_TRUE(log.contains(failedWrite("0", "red")));
    EXPECT_TRUE(log.contains(failedWrite("0x1", "green")));
    EXPECT_TRUE(log.contains(failedWrite("0", "blue")));
}

TEST_F(QelStateLedThreadTest, Destruction_LeavesTheLastColor) {
    {
        SteppedLed sut;
        sut.request(eStatus_ChildAlarm);
        sut.tick();
    }
    EXPECT_EQ(ledContents(), "1/0/0");
}

TEST_F(QelStateLedThreadTest, Tick_ShowsTheRequestedState) {
    SteppedLed sut;
    sut.request(eStatus_ChildWarning);
    EXPECT_EQ(ledContents(), "0/1/0") << "before the tick";
    sut.tick();
    EXPECT_EQ(ledContents(), "10/5/0");
    sut.request(eStatus_UndefinedValue);
    sut.tick();
    EXPECT_EQ(ledContents(), "0/0/0");
    sut.request(eStatus_LostChild);
    sut.tick();
    EXPECT_EQ(ledContents(), "1/0/0");
}

TEST_F(QelStateLedThreadTest, Tick_LogsEachChangedLevel) {
    SteppedLed sut;
    log.take();
    sut.request(eStatus_ChildWarning);
    sut.tick();
    sut.tick();
    EXPECT_THAT(
        log.entries(),
        ElementsAre(
            LogEntry{category, log4cpp::Priority::INFO, "run: state change On => Child Warning"},
            LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0, old = 0, new = 0xa"},
            LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0x1, new = 0x5"}));
}

TEST_F(QelStateLedThreadTest, Tick_BlinksWhileTheDeviceUpdatesAndStopsAtOnce) {
    SteppedLed sut;
    sut.request(eStatus_DeviceIsUpdating);
    for (int round = 0; round < 3; ++round) {
        sut.tick();
        EXPECT_EQ(ledContents(), "1/0/1");
        sut.tick();
        EXPECT_EQ(ledContents(), "0/0/0");
    }
    sut.request(eStatus_On);
    for (int round = 0; round < 3; ++round) {
        sut.tick();
        EXPECT_EQ(ledContents(), "0/1/0");
    }
}

TEST_F(QelStateLedThreadTest, Tick_FailedUpdateShowsFourColorsInOrder) {
    SteppedLed sut;
    sut.request(eStatus_DeviceUpdateError);
    for (int round = 0; round < 2; ++round) {
        for (auto const* const contents : {"1/0/1", "0/0/0", "1/0/0", "0/0/0"}) {
            sut.tick();
            EXPECT_EQ(ledContents(), contents);
        }
    }
}

TEST_F(QelStateLedThreadTest, Tick_StateWithoutColorsKeepsTheLedAndWarnsEachTick) {
    SteppedLed sut;
    sut.tick();
    sut.request(eStatus_HighAlarm);
    for (int round = 0; round < 3; ++round) {
        sut.tick();
        EXPECT_EQ(ledContents(), "0/1/0");
    }
    EXPECT_EQ(
        log.count({category, log4cpp::Priority::WARN, "run: State High Alarm has no color assigned to it"}),
        3U);
    log.take();
    sut.request(eStatus_ChildAlarm);
    sut.tick();
    EXPECT_EQ(ledContents(), "1/0/0");
    EXPECT_TRUE(log.contains({category, log4cpp::Priority::INFO, "run: state change On => Child Alarm"}));
}

TEST_F(QelStateLedThreadTest, Tick_SteadyColorIsNotWrittenAgain) {
    SteppedLed sut;
    sut.tick();
    qel::test::markLedFiles();
    for (int round = 0; round < 5; ++round) {
        sut.tick();
    }
    EXPECT_EQ(ledContents(), "untouched/untouched/untouched");
}

TEST_F(QelStateLedThreadTest, Tick_UnchangedChannelsAreNotWritten) {
    SteppedLed sut;
    sut.request(eStatus_ChildAlarm);
    qel::test::markLedFiles();
    sut.tick();
    EXPECT_EQ(ledContents(), "1/0/untouched");
    sut.request(eStatus_LostChild);
    qel::test::markLedFiles();
    sut.tick();
    EXPECT_EQ(ledContents(), "untouched/untouched/untouched") << "another state of the same colour";
}

TEST_F(QelStateLedThreadTest, Tick_MissingFileWarnsOnceAndRecoversWhenTheLevelChanges) {
    SteppedLed sut;
    std::filesystem::remove_all(ledDevice("red"));
    sut.request(eStatus_ChildAlarm);
    sut.tick();
    sut.tick();
    EXPECT_EQ(ledContents(), "(none)/0/0");
    EXPECT_EQ(log.count(failedWrite("0x1", "red")), 1U);

    std::filesystem::create_directory(ledDevice("red"));
    qel::test::writeFile(ledFile("red"), "untouched");
    sut.tick();
    EXPECT_EQ(ledContents(), "untouched/0/0") << "not tried again while the level stays";
    sut.request(eStatus_ChildWarning);
    sut.tick();
    EXPECT_EQ(ledContents(), "10/5/0");
}

TEST_F(QelStateLedThreadTest, Tick_DirectoryInPlaceOfTheFileWarns) {
    SteppedLed sut;
    std::filesystem::remove(ledFile("green"));
    std::filesystem::create_directory(ledFile("green"));
    sut.request(eStatus_ChildAlarm);
    sut.tick();
    EXPECT_EQ(contentOf(ledFile("red")), "1");
    EXPECT_EQ(log.count(failedWrite("0", "green")), 1U);
}

TEST_F(QelStateLedThreadTest, Tick_ReadOnlyFileWarnsAndTheOthersAreWritten) {
    SteppedLed sut;
    {
        ReadOnlyFile const readOnly(ledFile("red"));
        ASSERT_TRUE(readOnly.mounted());
        sut.request(eStatus_ChildWarning);
        sut.tick();
        EXPECT_EQ(ledContents(), "0/5/0");
        EXPECT_EQ(log.count(failedWrite("0xa", "red")), 1U);
    }
    sut.request(eStatus_ChildAlarm);
    sut.tick();
    EXPECT_EQ(ledContents(), "1/0/0");
}

TEST_F(QelStateLedThreadTest, Update_ForceWritesAfterAFailedWrite) {
    SteppedLed sut;
    std::filesystem::remove_all(ledDevice("blue"));
    sut.update({0, 1, 1}, false);
    std::filesystem::create_directory(ledDevice("blue"));
    sut.update({0, 1, 1}, false);
    EXPECT_EQ(contentOf(ledFile("blue")), "(none)");
    sut.update({0, 1, 1}, true);
    EXPECT_EQ(contentOf(ledFile("blue")), "1");
}

TEST_F(QelStateLedThreadTest, Run_ReturnsAtOnceWhenNotStarted) {
    SteppedLed sut;
    qel::test::markLedFiles();
    log.take();
    sut.request(eStatus_ChildAlarm);
    sut.run();
    EXPECT_EQ(ledContents(), "untouched/untouched/untouched");
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(QelStateLedThreadTest, Run_SurvivesMissingFiles) {
    std::filesystem::remove_all(ledDevice("red"));
    shm::QelStateLedThread sut;
    sut.start();
    sut.request(eStatus_ChildAlarm);
    EXPECT_TRUE(log.waitFor(failedWrite("0x1", "red")));
    std::filesystem::create_directory(ledDevice("red"));
    sut.request(eStatus_ChildWarning);
    EXPECT_TRUE(log.waitFor({category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0, new = 0x5"}));
    sut.join();
    EXPECT_EQ(ledContents(), "10/5/0");
}

TEST_F(QelStateLedThreadTest, Run_GoesOnWithTheShownStateWhenStartedAgain) {
    shm::QelStateLedThread sut;
    sut.request(eStatus_ChildAlarm);
    sut.start();
    EXPECT_TRUE(log.waitFor({category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0x1, new = 0"}));
    sut.join();
    log.take();
    sut.request(eStatus_ChildWarning);
    sut.start();
    EXPECT_TRUE(
        log.waitFor({category, log4cpp::Priority::INFO, "run: state change Child Alarm => Child Warning"}));
    sut.join();
    EXPECT_EQ(ledContents(), "10/5/0");
}

TEST_F(QelStateLedThreadTest, Tick_WhenMemoryEnds_IsLostAndTheNextOneWritesAllThree) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    for (auto const limited : {&ScarceMemory::afterAllocations, &ScarceMemory::onceAfterAllocations}) {
        std::size_t allowed = 0;
        std::size_t failures = 0;
        do {
            SteppedLed sut;
            sut.tick();
            sut.request(eStatus_ChildWarning);
            {
                auto const memory = limited(allowed);
                sut.tick();
                failures = memory.failures();
            }
            sut.tick();
            EXPECT_EQ(ledContents(), "10/5/0") << "memory for " << allowed << " allocations";
            qel::test::markLedFiles();
            sut.tick();
            EXPECT_EQ(ledContents(), "untouched/untouched/untouched") << "once it was written";
            ++allowed;
        } while (failures != 0);
        EXPECT_GT(allowed, 5U) << "places where memory ended";
    }
}

TEST_F(QelStateLedThreadTest, Tick_WhenMemoryEndsAgainAndAgain_IsMadeUpForLater) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    SteppedLed sut;
    sut.tick();
    qel::test::markLedFiles();
    sut.request(eStatus_ChildAlarm);
    for (int lost = 0; lost < 5; ++lost) {
        auto const memory = ScarceMemory::afterAllocations(0);
        sut.tick();
        EXPECT_GT(memory.failures(), 0U);
    }
    EXPECT_NE(ledContents(), "1/0/0");
    sut.tick();
    EXPECT_EQ(ledContents(), "1/0/0");
}

TEST_F(QelStateLedThreadTest, Update_WithoutMemory_TellsTheOwner) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    SteppedLed sut;
    auto const memory = ScarceMemory::afterAllocations(0);
    EXPECT_THROW(sut.update({1, 1, 1}, true), std::bad_alloc);
}

TEST_F(QelStateLedThreadTest, Run_WhenMemoryEnds_TheThreadLivesOnAndTheFilesEndUpRight) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    shm::QelStateLedThread sut;
    sut.start();
    {
        auto const memory = ScarceMemory::inOtherThreads();
        sut.request(eStatus_ChildWarning);
        // Its lines of the log fail first, then the buffer of the file that it has already emptied.
        EXPECT_TRUE(eventually([] { return contentOf(ledFile("red")).empty(); }));
        EXPECT_GT(memory.failures(), 0U);
    }
    EXPECT_TRUE(eventually([] { return ledContents() == "10/5/0"; }));
    sut.request(eStatus_On);
    EXPECT_TRUE(eventually([] { return ledContents() == "0/1/0"; }));
    sut.join();
}

TEST_F(QelStateLedThreadTest, OfStaticDuration_DoesNotHoldUpTheEndOfAForkedChild) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    struct Joined {
        shm::QelStateLedThread led;
        ~Joined() { led.join(); } // as the writer does
    };
    static Joined sut;
    sut.led.start();
    EXPECT_EQ(inForkedChild([]() -> int { std::exit(3); }), 3);
    sut.led.request(eStatus_ChildAlarm);
    EXPECT_TRUE(eventually([] { return ledContents() == "1/0/0"; })) << "the parent's thread goes on";
    sut.led.join();
}

TEST_F(QelStateLedThreadTest, Join_DoesNotWaitForTheTick) {
    auto fastest = Clock::duration::max();
    for (int attempt = 0; attempt < 5; ++attempt) {
        shm::QelStateLedThread sut;
        log.take();
        sut.request(eStatus_ChildAlarm);
        sut.start();
        ASSERT_TRUE(
            log.waitFor({category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0x1, new = 0"}));
        std::this_thread::sleep_for(20ms); // into the sleep between two ticks
        auto const begin = Clock::now();
        sut.join();
        fastest = std::min(fastest, Clock::now() - begin);
    }
    EXPECT_LT(fastest, 200ms);
}

TEST_F(QelStateLedThreadTest, Run_TicksEveryHalfSecond) {
    shm::QelStateLedThread sut;
    sut.request(eStatus_DeviceIsUpdating);
    sut.start();
    std::vector<Clock::time_point> changes;
    std::string last;
    auto const deadline = Clock::now() + 30s;
    while (changes.size() < 6 && Clock::now() < deadline) {
        auto const red = contentOf(ledFile("red"));
        if ((red == "0" || red == "1") && red != last) {
            last = red;
            changes.push_back(Clock::now());
        }
        std::this_thread::sleep_for(5ms);
    }
    sut.join();
    ASSERT_EQ(changes.size(), 6U);
    // The first change is when the look-out began; the four periods between the others are whole ticks.
    auto const fourTicks = changes[5] - changes[1];
    EXPECT_GT(fourTicks, 1800ms);
    EXPECT_LT(fourTicks, 4000ms);
}

} // namespace
