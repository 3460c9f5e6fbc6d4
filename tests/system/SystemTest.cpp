// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// One writing process, reading processes, and a real bus between them.

#include "tests/support/Eventually.h"
#include "tests/support/RawRegion.h"
#include "tests/system/Peers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>

namespace qel::test {

namespace {

std::string const unit = "0x0100ffffffff0000";
std::string const inlet = "0x010001ffffff0000";
std::string const circuit = "0x010001ff01ff0000";

void layOut(Writer& writer) {
    EXPECT_EQ("added", writer.ask("add " + unit + " 0x200"));
    EXPECT_EQ("added", writer.ask("add " + inlet + " 1 4 19 36"));
    EXPECT_EQ("done", writer.ask("active"));
    EXPECT_EQ("done", writer.ask("answer 1"));
}

bool becomesActive(Reader& reader) {
    return reader.ask("wait") == "active";
}

TEST(System, Values_TravelFromTheWriterToAReader) {
    Writer writer;
    Reader reader;
    layOut(writer);
    ASSERT_TRUE(becomesActive(reader));

    EXPECT_EQ("n/a, -2, 0", reader.ask("text " + inlet + " 1"));
    EXPECT_EQ("stored", writer.ask("update " + inlet + " 1 230.14 0"));
    EXPECT_EQ("stored", writer.ask("update " + inlet + " 36 12500 3"));

    EXPECT_EQ("230.1 V, 0, 1000", reader.ask("text " + inlet + " 1"));
    EXPECT_EQ("12.5 kWh, 3, 1000", reader.ask("text " + inlet + " 36"));
    EXPECT_EQ("none", reader.ask("text " + inlet + " 2"));
    EXPECT_EQ("none", reader.ask("text " + circuit + " 1"));
}

TEST(System, AlarmOfAValue_ShowsInTheGlobalStateOfEveryReader) {
    Writer writer;
    layOut(writer);
    std::array<std::unique_ptr<Reader>, 3> readers;
    for (auto& reader : readers) {
        reader = std::make_unique<Reader>();
        ASSERT_TRUE(becomesActive(*reader));
    }

    writer.ask("update " + inlet + " 4 16.5 1");
    EXPECT_THAT(readers[0]->ask("global"), testing::HasSubstr("State = On,"));
    writer.ask("propagate");
    for (auto& reader : readers) {
        EXPECT_EQ("QSR {valid = true, version = 0x20, State = Child Alarm, devices = 0x1, groups = 0}",
                  reader->ask("global"));
    }

    writer.ask("update " + inlet + " 4 12.5 0");
    writer.ask("propagate");
    for (auto& reader : readers) {
        EXPECT_THAT(reader->ask("global"), testing::HasSubstr("State = On,"));
    }
}

TEST(System, Reader_MapsNothingUntilTheManagerIsInitialised) {
    Writer writer;
    EXPECT_EQ("added", writer.ask("add " + unit + " 0x200"));
    EXPECT_EQ("done", writer.ask("active"));
    Reader reader;

    EXPECT_EQ("no", reader.ask("mapped"));
    EXPECT_EQ("0", reader.ask("ids"));
    EXPECT_EQ("QSR {valid = false}", reader.ask("global"));

    writer.ask("answer 1");
    EXPECT_TRUE(becomesActive(reader));
    // The region is mapped an instant before the change is counted that has the index built anew.
    EXPECT_TRUE(eventually([&] { return reader.ask("ids") == "1 " + unit; })) << reader.ask("ids");
}

TEST(System, NewPoint_IsFoundOnlyAfterTheSignal) {
    Writer writer;
    Reader reader;
    layOut(writer);
    ASSERT_TRUE(becomesActive(reader));
    EXPECT_EQ("n/a, -2, 0", reader.ask("text " + inlet + " 1"));

    EXPECT_EQ("added", writer.ask("add " + circuit + " 19"));
    EXPECT_EQ("none", reader.ask("text " + circuit + " 19"));

    writer.ask("signal");
    ASSERT_TRUE(eventually([&] { return reader.ask("modifications") == "1"; }));
    EXPECT_EQ("n/a, -2, 0", reader.ask("text " + circuit + " 19"));
    EXPECT_EQ("0", reader.ask("modifications"));
}

TEST(System, WriterThatEnds_LeavesNoObjectButTheReadersOldMapping) {
    auto writer = std::make_unique<Writer>();
    Reader reader;
    layOut(*writer);
    ASSERT_TRUE(becomesActive(reader));
    writer->ask("update " + inlet + " 1 230.14 0");

    writer->process().writeLine("quit");
    EXPECT_EQ(0, writer->process().wait());

    EXPECT_FALSE(rawRegionExists());
    EXPECT_TRUE(std::filesystem::is_empty("/dev/shm"));
    EXPECT_EQ("230.1 V, 0, 1000", reader.ask("text " + inlet + " 1"));
}

TEST(System, WriterThatWasKilled_IsFollowedByOneThatReusesTheObject) {
    auto killed = std::make_unique<Writer>();
    Reader reader;
    layOut(*killed);
    ASSERT_TRUE(becomesActive(reader));
    killed->process().signal(SIGKILL);
    EXPECT_EQ(128 + SIGKILL, killed->process().wait());
    EXPECT_TRUE(rawRegionExists());

    Writer writer;
    EXPECT_EQ("inactive", reader.ask("mapped"));
    layOut(writer);
    EXPECT_EQ("active", reader.ask("mapped"));
    writer.ask("update " + inlet + " 1 231.5 0");
    EXPECT_EQ("231.5 V, 0, 1000", reader.ask("text " + inlet + " 1"));
}

} // namespace

} // namespace qel::test
