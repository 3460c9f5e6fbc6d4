// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A writer that ends as it should and is started again: what readers have then, and how they follow.

#include "tests/support/Eventually.h"
#include "tests/support/RawRegion.h"
#include "tests/support/Rounds.h"
#include "tests/system/Peers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

namespace qel::test {

namespace {

std::string const unit = "0x0100ffffffff0000";
std::string const inlet = "0x010001ffffff0000";

/// A writer whose inlet has one voltage.
std::unique_ptr<Writer> writerWithVoltage(std::string const& volts) {
    auto writer = std::make_unique<Writer>();
    writer->ask("add " + unit);
    writer->ask("add " + inlet + " 1");
    writer->ask("active");
    writer->ask("update " + inlet + " 1 " + volts + " 0");
    writer->ask("answer 1");
    return writer;
}

void endCleanly(std::unique_ptr<Writer>& writer) {
    writer->process().writeLine("quit");
    ASSERT_EQ(0, writer->process().wait());
    writer.reset();
    ASSERT_TRUE(std::filesystem::is_empty("/dev/shm"));
}

std::string voltageSeenBy(Reader& reader) {
    return reader.ask("text " + inlet + " 1");
}

class CleanRestart : public testing::Test {
protected:
    CleanRestart() { EXPECT_EQ("active", reader_.ask("wait")); }

    void restartWith(std::string const& volts) {
        endCleanly(writer_);
        writer_ = writerWithVoltage(volts);
    }

    std::unique_ptr<Writer> writer_ = writerWithVoltage("230.14");
    Reader reader_;
};

TEST_F(CleanRestart, NewObject_IsAnotherOneOfTheSameNameAndSize) {
    auto const former = rawRegionInode();
    restartWith("231.5");
    EXPECT_NE(0U, rawRegionInode());
    EXPECT_NE(former,
              rawRegionInode()); // the reader's mapping keeps the former one, so its number is not free
    EXPECT_EQ(320032, rawRegionSizeNow());
}

TEST_F(CleanRestart, ExistingReader_KeepsTheOldContentForGood) {
    EXPECT_EQ("230.1 V, 0, 1000", voltageSeenBy(reader_));
    auto const tree = reader_.ask("tree");

    restartWith("231.5");
    EXPECT_EQ("added", writer_->ask("add 0x010001ff01ff0000 19"));
    writer_->ask("signal");
    ASSERT_TRUE(
        eventually([&] { return reader_.ask("modifications") == "1"; })); // even with its index built anew

    EXPECT_EQ("230.1 V, 0, 1000", voltageSeenBy(reader_));
    EXPECT_EQ("0", reader_.ask("modifications"));
    EXPECT_EQ(tree, reader_.ask("tree"));
    EXPECT_EQ("active", reader_.ask("mapped")); // a writer's clean end does not take the version away
}

TEST_F(CleanRestart, NewReader_SeesTheNewContent) {
    restartWith("231.5");
    Reader other;
    ASSERT_EQ("active", other.ask("wait"));
    EXPECT_EQ("231.5 V, 0, 1000", voltageSeenBy(other));
    EXPECT_EQ("230.1 V, 0, 1000", voltageSeenBy(reader_));
}

TEST_F(CleanRestart, ReaderMadeWhileThereIsNoWriter_WaitsForTheNextOne) {
    endCleanly(writer_);
    EXPECT_EQ("renewed", reader_.ask("renew"));
    EXPECT_EQ("no", reader_.ask("mapped"));
    EXPECT_EQ("none", voltageSeenBy(reader_));

    writer_ = writerWithVoltage("231.5");
    ASSERT_EQ("active", reader_.ask("wait"));
    EXPECT_EQ("231.5 V, 0, 1000", voltageSeenBy(reader_));
}

TEST_F(CleanRestart, ClientThatMakesItsReaderAnew_FollowsEveryRestart) {
    int const restarts = rounds(5, 200);
    auto const resources = reader_.ask("resources");
    for (int restart = 1; restart <= restarts; ++restart) {
        restartWith(std::to_string(100 + restart));
        EXPECT_EQ("renewed", reader_.ask("renew"));
        ASSERT_EQ("active", reader_.ask("wait"));
        EXPECT_EQ(std::to_string(100 + restart) + ".0 V, 0, 1000", voltageSeenBy(reader_));
    }
    EXPECT_TRUE(eventually([&] { return reader_.ask("resources") == resources; }))
        << reader_.process().lastLine();

    EXPECT_EQ("added", writer_->ask("add 0x010001ff01ff0000 19"));
    writer_->ask("signal");
    ASSERT_TRUE(
        eventually([&] { return reader_.ask("modifications") == "1"; })); // one subscription, not many
    EXPECT_EQ("n/a, -2, 0", reader_.ask("text 0x010001ff01ff0000 19"));
}

} // namespace

} // namespace qel::test
