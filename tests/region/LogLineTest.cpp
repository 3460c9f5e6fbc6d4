#include "region/LogLine.h"

#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log4cpp/Category.hh>

#include <limits>
#include <locale>
#include <ostream>
#include <string>

namespace {

using log4cpp::Priority;
using qel::test::LogCapture;
using qel::test::LogEntry;
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
        LogLine sut(shm::accessLog(), Priority::WARN, "openShm");
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
        LogLine(shm::accessLog(), level, "op") << "words";
        EXPECT_THAT(log.take(), ElementsAre(LogEntry{access, level, "op: words"}));
    }
    static_assert(Priority::CRIT == 200 && Priority::ERROR == 300 && Priority::WARN == 400);
    static_assert(Priority::INFO == 600 && Priority::DEBUG == 700);
}

TEST(LogLineTest, NumbersAreHexadecimalWithPrefixAndZeroIsBare) {
    LogCapture const log;
    LogLine(shm::accessLog(), Priority::INFO, "op") << 255 << ' ' << 0 << ' ' << 0xFFFFFFFFU << ' ' << -1LL
                                                    << ' ' << std::numeric_limits<long long>::max();
    EXPECT_THAT(log.entries(),
                ElementsAre(LogEntry{access, Priority::INFO,
                                     "op: 0xff 0 0xffffffff 0xffffffffffffffff 0x7fffffffffffffff"}));
}

TEST(LogLineTest, ALineMayTurnToDecimal) {
    LogCapture const log;
    LogLine(shm::accessLog(), Priority::INFO, "op") << 16 << ' ' << std::dec << 16 << ' ' << std::hex << 16;
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: 0x10 16 0x10"}));
}

TEST(LogLineTest, TextIsNoFormat) {
    LogCapture const log;
    LogLine(shm::accessLog(), Priority::INFO, "op") << "100 % %s %n";
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: 100 % %s %n"}));
}

TEST(LogLineTest, NothingIsFormattedWhileTheLevelIsOff) {
    LogCapture const log("qel", Priority::INFO);
    int times = 0;
    LogLine(shm::accessLog(), Priority::DEBUG, "op") << Counting{times} << std::dec << Counting{times};
    EXPECT_EQ(times, 0);
    EXPECT_THAT(log.entries(), IsEmpty());
    LogLine(shm::accessLog(), Priority::INFO, "op") << Counting{times};
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
    LogLine(shm::accessLog(), Priority::INFO, "op") << 0x12345;
    std::locale::global(former);
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{access, Priority::INFO, "op: 0x12345"}));
}

TEST(LogLineTest, CategoriesBearTheirNames) {
    EXPECT_EQ(shm::accessLog().getName(), "qel.shm.access");
    EXPECT_EQ(shm::writerLog().getName(), "qel.shm.access.writer");
    EXPECT_EQ(shm::readerLog().getName(), "qel.shm.access.reader");
    EXPECT_EQ(shm::statesLog().getName(), "qel.shm.access.states");
    EXPECT_EQ(shm::formatLog().getName(), "qel.shm.access.format");
}

} // namespace
