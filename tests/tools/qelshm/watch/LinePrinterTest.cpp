// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/LinePrinter.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gmock/gmock.h>

#include <sstream>

namespace qel::watch {

namespace {

constexpr std::uint64_t time = 1686296078000; // 2023-06-09T07:34:38Z

class LinePrinterTest : public testing::Test {
protected:
    std::string update(LinePrinter& sut) {
        out.str("");
        auto const now = unit.snapshot(ticks += 250);
        sut.update(now, inspect::regionStatus(now.source, now.image, now.now, std::nullopt));
        return out.str();
    }

    std::ostringstream out;
    test::SmallUnit unit;
    std::uint64_t ticks = 0;
};

} // namespace

TEST_F(LinePrinterTest, Change_IsALine) {
    LinePrinter sut(out, WatchedNames({}), false, std::nullopt);
    EXPECT_EQ("", update(sut)) << "what is there at first is taken as it is";
    unit.deliver(unit.socket2Power, 2310.9, time, eStatus_HighWarning);
    EXPECT_EQ("2023-06-09T07:34:38Z  unit1/inlet1/socket2              Active Power      2310.9 W        "
              "High Warning\n",
              update(sut));
    EXPECT_EQ("", update(sut));
    unit.deliver(unit.inletVoltage, 0.0, 0, eStatus_ExpectedValue);
    EXPECT_EQ("-  unit1/inlet1                      Voltage           n/a             Expected Value\n",
              update(sut));
    EXPECT_FALSE(sut.isDone());
}

TEST_F(LinePrinterTest, ChangedTimeAlone_IsNoLine) {
    LinePrinter sut(out, WatchedNames({}), false, std::nullopt);
    update(sut);
    unit.deliver(unit.socket2Power, 0.0, time);
    EXPECT_EQ("", update(sut));
}

TEST_F(LinePrinterTest, Names_ChooseWhatIsWritten) {
    LinePrinter sut(out, WatchedNames({"unit1/inlet1", "0x010001ffff020001"}), false, std::nullopt);
    update(sut);
    for (auto const value :
         {unit.inletPower, unit.inletVoltage, unit.socket10Power, unit.socket2Power, unit.socket2Voltage}) {
        unit.deliver(value, 1.0, time);
    }
    EXPECT_THAT(update(sut), testing::ContainsRegex("^[^\n]*inlet1  *Voltage[^\n]*\n[^\n]*inlet1  *Active "
                                                    "Power[^\n]*\n[^\n]*socket2 *Voltage[^\n]*\n$"));
}

TEST_F(LinePrinterTest, RegionThatWasAway_IsTakenAsItIs) {
    LinePrinter sut(out, WatchedNames({}), false, std::nullopt);
    update(sut);
    unit.region().root.version = 0;
    EXPECT_EQ("", update(sut));
    unit.region().root.version = shm::ACTIVE_VERSION;
    unit.deliver(unit.socket2Power, 1.0, time);
    EXPECT_EQ("", update(sut));
}

TEST_F(LinePrinterTest, Count_EndsItAfterSoManyLines) {
    LinePrinter sut(out, WatchedNames({}), false, 3);
    update(sut);
    unit.deliver(unit.inletPower, 1.0, time);
    unit.deliver(unit.inletVoltage, 1.0, time);
    update(sut);
    EXPECT_FALSE(sut.isDone());
    unit.deliver(unit.inletPower, 2.0, time);
    unit.deliver(unit.inletVoltage, 2.0, time);
    auto const lines = update(sut);
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(), '\n'));
    EXPECT_TRUE(sut.isDone());
}

TEST_F(LinePrinterTest, State_IsColouredIfWanted) {
    LinePrinter sut(out, WatchedNames({}), true, std::nullopt);
    update(sut);
    unit.deliver(unit.socket2Power, 1.0, time, eStatus_Lost);
    EXPECT_THAT(update(sut), testing::EndsWith("  \x1b[31mLost\x1b[0m\n"));
}

TEST_F(LinePrinterTest, OutputThatFails_EndsIt) {
    LinePrinter sut(out, WatchedNames({}), false, std::nullopt);
    out.setstate(std::ios::badbit);
    EXPECT_TRUE(sut.isDone());
}

} // namespace qel::watch
