// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/LogLine.h"

#include "tests/support/LogCapture.h"
#include "tests/support/ScarceMemory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log4cpp/BasicLayout.hh>
#include <log4cpp/Category.hh>
#include <log4cpp/OstreamAppender.hh>

#include <cstddef>
#include <limits>
#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace {

using log4cpp::Priority;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::ScarceMemory;
using shm::LogLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char const* access = "qel.shm.access";

/// Counts how often it is turned into text.
struct Counting {
    int& times;
};

std::ostream& operator<<(std::ostream& out, Counting const& item) {
    ++item.times;
    return out << "item";
}

TEST(LogLineTest, StartsWithTheOperationAndReachesTheCategoryAtTheEndOfItsScope) {
    LogCapture const log;
    {
        LogLine sut(shm::accessLog, Priority::WARN, "openShm");
        sut << "some "
            << "words";
        EXPECT_THAT(log.entries(), IsEmpty());
    }
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::WARN, "openShm: some words"}));
}

TEST(LogLineTest, EveryLevelIsKept) {
    LogCapture log;
    for (int const level :
         {Priority::CRIT, Priority::ERROR, Priority::WARN, Priority::INFO, Priority::DEBUG}) {
        LogLine(shm::accessLog, level, "op") << "words";
        EXPECT_THAT(log.take(), ElementsAre(LogEntry{access, level, "op: words"}));
    }
    static_assert(Priority::CRIT == 200 && Priority::ERROR == 300 && Priority::WARN == 400);
    static_assert(Priority::INFO == 600 && Priority::DEBUG == 700);
}

TEST(LogLineTest, NumbersAreHexadecimalWithPrefixAndZeroIsBare) {
    LogCapture const log;
    LogLine(shm::accessLog, Priority::INFO, "op") << 255 << ' ' << 0 << ' ' << 0xFFFFFFFFU << ' ' << -1LL
                                                  << ' ' << std::numeric_limits<long long>::max();
    EXPECT_THAT(log.entries(),
                ElementsAre(LogEntry{access, Priority::INFO,
                                     "op: 0xff 0 0xffffffff 0xffffffffffffffff 0x7fffffffffffffff"}));
}

TEST(LogLineTest, ALineMayTurnToDecimal) {
    LogCapture const log;
    LogLine(shm::accessLog, Priority::INFO, "op") << 16 << ' ' << std::dec << 16 << ' ' << std::hex << 16;
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: 0x10 16 0x10"}));
}

TEST(LogLineTest, TextIsNoFormat) {
    LogCapture const log;
    LogLine(shm::accessLog, Priority::INFO, "op") << "100 % %s %n";
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: 100 % %s %n"}));
}

TEST(LogLineTest, NothingIsFormattedWhileTheLevelIsOff) {
    LogCapture const log("qel", Priority::INFO);
    int times = 0;
    LogLine(shm::accessLog, Priority::DEBUG, "op") << Counting{times} << std::dec << Counting{times};
    EXPECT_EQ(times, 0);
    EXPECT_THAT(log.entries(), IsEmpty());
    LogLine(shm::accessLog, Priority::INFO, "op") << Counting{times};
    EXPECT_EQ(times, 1);
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: item"}));
}

class GroupedDigits : public std::numpunct<char> {
protected:
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};

TEST(LogLineTest, TheLocaleOfTheProcessDoesNotShow) {
    LogCapture const log;
    auto const former = std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    LogLine(shm::accessLog, Priority::INFO, "op") << 0x12345;
    std::locale::global(former);
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: 0x12345"}));
}

TEST(LogLineTest, IsDeclaredToThrowNothing) {
    static_assert(noexcept(shm::accessLog.get()));
    static_assert(
        std::is_nothrow_constructible_v<LogLine, shm::LogCategory const&, Priority::Value, std::string_view>);
    static_assert(std::is_nothrow_destructible_v<LogLine>);
    static_assert(noexcept(std::declval<LogLine&>() << std::declval<Counting const&>() << std::dec));
}

/// Prints a little, then throws.
template <typename Error>
struct Throwing {};

template <typename Error>
std::ostream& operator<<(std::ostream& out, Throwing<Error> const& /*item*/) {
    out << "half of it";
    throw Error();
}

struct LogicError : std::logic_error {
    LogicError() : std::logic_error("in printing") {}
};

TEST(LogLineTest, AnItemWhosePrintingThrows_TakesTheWholeLineWithIt) {
    LogCapture const log;
    int times = 0;
    LogLine(shm::accessLog, Priority::INFO, "op") << "before " << Throwing<LogicError>() << Counting{times};
    LogLine(shm::accessLog, Priority::INFO, "op") << Throwing<int>() << std::dec << 1;
    EXPECT_EQ(times, 0) << "what stands behind it is not formatted any more";
    EXPECT_THAT(log.entries(), IsEmpty());
    LogLine(shm::accessLog, Priority::INFO, "op") << "next";
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: next"}));
}

TEST(LogLineTest, AnItemWhosePrintingThrows_IsNotPrintedWhileTheLevelIsOff) {
    LogCapture const log("qel", Priority::INFO);
    LogLine(shm::accessLog, Priority::DEBUG, "op") << Throwing<LogicError>();
    EXPECT_THAT(log.entries(), IsEmpty());
}

/// Fails in a stream's own way.
struct Failing {};

std::ostream& operator<<(std::ostream& out, Failing const& /*item*/) {
    out.setstate(std::ios_base::badbit);
    return out;
}

TEST(LogLineTest, AnItemThatLeavesTheStreamFailed_TakesTheWholeLineWithIt) {
    LogCapture const log;
    LogLine(shm::accessLog, Priority::INFO, "op") << "before " << Failing() << " behind";
    EXPECT_THAT(log.entries(), IsEmpty());
}

std::string const longText(300, 'x');

/// Logs a line of many kinds of items, long enough for its text to move several times.
void logMuch() noexcept {
    LogLine(shm::accessLog, Priority::INFO, "operation")
        << longText << ' ' << 255 << " text " << -1LL << ' ' << std::dec << 1.5 << true;
}

std::string const much = "operation: " + longText + " 0xff text 0xffffffffffffffff 1.51";

TEST(LogLineTest, WhenMemoryEnds_ALineIsWholeOrNotThere) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    LogCapture log;
    logMuch();
    ASSERT_THAT(log.take(), ElementsAre(LogEntry{access, Priority::INFO, much}));
    for (auto const limited : {&ScarceMemory::afterAllocations, &ScarceMemory::onceAfterAllocations}) {
        std::size_t allowed = 0;
        std::size_t failures = 0;
        do {
            {
                auto const memory = limited(allowed);
                logMuch();
                failures = memory.failures();
            }
            auto const entries = log.take();
            if (failures == 0) {
                EXPECT_THAT(entries, ElementsAre(LogEntry{access, Priority::INFO, much}));
            } else if (!entries.empty()) {
                EXPECT_THAT(entries, ElementsAre(LogEntry{access, Priority::INFO, much})) << allowed;
            }
            ++allowed;
        } while (failures != 0);
        EXPECT_GT(allowed, 5U) << "places where memory ended";
    }
}

TEST(LogLineTest, WhenMemoryEndsBeforeTheFirstLine_TheCategoryIsLookedUpLater) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    // In a process of its own, in which no category is known yet.
    EXPECT_EXIT(
        {
            std::size_t allowed = 0;
            std::size_t failures = 0;
            do {
                auto const memory = ScarceMemory::onceAfterAllocations(allowed++);
                logMuch();
                failures = memory.failures();
            } while (failures != 0);
            // Without the search for leaks: log4cpp loses a category that it cannot enter for want of memory.
            std::_Exit(shm::accessLog.get() != nullptr && allowed > 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

/// An appender of log4cpp's own with its layout, which take memory where nothing may be thrown.
class UsualAppender {
public:
    UsualAppender() {
        auto* const appender = new log4cpp::OstreamAppender("usual", &text_);
        appender->setLayout(new log4cpp::BasicLayout());
        category_.addAppender(appender);
        category_.setPriority(Priority::DEBUG);
        text_.str(std::string(1U << 20U, ' ')); // room for all lines
        text_.seekp(0);
    }
    ~UsualAppender() {
        category_.removeAllAppenders();
        category_.setPriority(Priority::NOTSET);
    }
    UsualAppender(UsualAppender const&) = delete;
    UsualAppender& operator=(UsualAppender const&) = delete;

    std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    log4cpp::Category& category_ = *shm::accessLog.get();
};

TEST(LogLineTest, WhenBytesEnd_UsualAppendersStillHaveWhatTheyNeed) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    UsualAppender const appender;
    std::size_t dropped = 0;
    for (std::size_t bytes = 0; bytes < 16384; bytes += 8) {
        auto const memory = ScarceMemory::ofBytes(bytes);
        logMuch();
        dropped += memory.failures() == 0 ? 0 : 1;
    }
    EXPECT_GT(dropped, 0U);
    EXPECT_LT(dropped, 16384U / 8);
    EXPECT_NE(appender.text().find(much), std::string::npos);
}

TEST(LogLineTest, CategoriesBearTheirNames) {
    EXPECT_EQ(shm::accessLog.get()->getName(), "qel.shm.access");
    EXPECT_EQ(shm::writerLog.get()->getName(), "qel.shm.access.writer");
    EXPECT_EQ(shm::readerLog.get()->getName(), "qel.shm.access.reader");
    EXPECT_EQ(shm::statesLog.get()->getName(), "qel.shm.access.states");
    EXPECT_EQ(shm::formatLog.get()->getName(), "qel.shm.access.format");
}

} // namespace
