// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/StatusCommand.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <utility>

namespace qel::test {

namespace {

using testing::HasSubstr;
using testing::Not;

std::string const soon = std::to_string(sampleTime + 5000);
std::string const late = std::to_string(sampleTime + 60001);

std::string conditionOf(QelshmOutcome const& outcome) {
    return nlohmann::json::parse(outcome.output).at("condition");
}

nlohmann::json contentOf(QelshmOutcome const& outcome) {
    return nlohmann::json::parse(outcome.output).at("content");
}

/// The healthy unit with its first value, the inlet's voltage, changed.
inspect::Image withValue(void (*change)(shm::record::QelShmMVal& value)) {
    auto const image = sampleImage("healthy");
    auto region = std::make_unique<shm::record::Region>(image.region());
    change(region->values[0]);
    return {std::move(region), image.size()};
}

} // namespace

TEST(StatusCommandTest, NoObject_IsAbsent) {
    auto const outcome = runQelshm({"status"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("condition  absent\nreason     no such object\nsource     live object QelSharedMemory\n",
              outcome.output);
    EXPECT_EQ("", outcome.errors);
    EXPECT_EQ("absent", conditionOf(runQelshm({"status", "--json"})));
}

TEST(StatusCommandTest, SomethingElseUnderTheName_IsUnreadable) {
    ASSERT_EQ(0, ::mkdir("/dev/shm/QelSharedMemory", 0755));
    auto const outcome = runQelshm({"status", "--json"});
    ::rmdir("/dev/shm/QelSharedMemory");
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("unreadable", conditionOf(outcome));
    EXPECT_EQ("a directory, link or device stands under the name",
              nlohmann::json::parse(outcome.output).at("problem"));
}

TEST(StatusCommandTest, ShortObject_IsTooShort) {
    int const fd = ::shm_open("QelSharedMemory", O_CREAT | O_RDWR, 0644);
    ASSERT_EQ(0, ::ftruncate(fd, 100));
    ::close(fd);
    auto const outcome = runQelshm({"status"});
    ::shm_unlink("QelSharedMemory");
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, HasSubstr("condition      too short\n"));
    EXPECT_THAT(outcome.output, HasSubstr("size           100 of 320032 bytes\n"));
}

TEST(StatusCommandTest, LiveObject_IsToldWithOwnerAndMode) {
    ForgedRegion const region;
    region.point(0, sample::unit);
    region.devices({0});
    EXPECT_EQ("inactive", conditionOf(runQelshm({"status", "--json"})));
    region.activate();
    auto const outcome = runQelshm({"status"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, HasSubstr("condition      active\n"));
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex("\nowner          [a-z0-9]+:[a-z0-9]+\nmode           rw-[-rwx]+\n"));
    EXPECT_THAT(outcome.output, HasSubstr("points         1 of 800\nvalues         0 of 8800\n"));
}

TEST(StatusCommandTest, ObjectThatOthersMayWrite_IsAFindingAndStatusOne) {
    ForgedRegion const region;
    region.activate();
    ASSERT_EQ(0, ::chmod("/dev/shm/QelSharedMemory", 0666));
    ASSERT_EQ(0, ::link("/dev/shm/QelSharedMemory", "/dev/shm/second"));
    auto const outcome = runQelshm({"status"});
    auto const json = runQelshm({"status", "--json"});
    ::unlink("/dev/shm/second");
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, HasSubstr("condition      active\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("mode           rw-rw-rw-\n"
                          "finding        mode-too-loose, found rw-rw-rw-, expected write permission for "
                          "the owner only\n"
                          "finding        name-not-unique, found 2, expected 1\n"));
    EXPECT_EQ(1, json.status);
    auto const object = nlohmann::json::parse(json.output).at("object");
    EXPECT_EQ(2, object.at("names"));
    ASSERT_EQ(2U, object.at("findings").size());
    EXPECT_EQ("mode-too-loose", object.at("findings").at(0).at("code"));
}

TEST(StatusCommandTest, ObjectOfAnotherUser_IsAFinding_AlsoWhenItCannotBeOpened) {
    ::unlink("/dev/shm/QelSharedMemory");
    ASSERT_EQ(0, ::mkfifo("/dev/shm/QelSharedMemory", 0644));
    bool const isGiven = ::chown("/dev/shm/QelSharedMemory", 65534, 65534) == 0;
    auto const outcome = runQelshm({"status"});
    ::unlink("/dev/shm/QelSharedMemory");
    if (!isGiven) {
        GTEST_SKIP() << "there is no other user";
    }
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, HasSubstr("condition  unreadable\n"));
    EXPECT_THAT(outcome.output, HasSubstr("finding    owner-not-expected, found "));
}

TEST(StatusCommandTest, MaxAge_TellsASilentRegion) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    EXPECT_EQ("active", conditionOf(runQelshm({"status", "--json", "--image", file, "--now", late})));
    auto const current = runQelshm({"status", "--json", "--max-age", "60", "--image", file, "--now", soon});
    EXPECT_EQ(0, current.status);
    EXPECT_EQ("active", conditionOf(current));
    auto const silent = runQelshm({"status", "--json", "--max-age", "60", "--image", file, "--now", late});
    EXPECT_EQ(1, silent.status);
    EXPECT_EQ("silent", conditionOf(silent));
    EXPECT_EQ("active", conditionOf(runQelshm(
                            {"status", "--json", "--max-age", "60.002", "--image", file, "--now", late})));
}

TEST(StatusCommandTest, Values_AreCountedByState) {
    ImageFolder const folder;
    EXPECT_THAT(runQelshm({"status", "--image", folder.add("alarm"), "--now", soon}).output,
                HasSubstr("\nvalue states   1 alarm, 0 warning, 0 lost, 3 never delivered, 0 stale\n"));
    EXPECT_THAT(runQelshm({"status", "--image", folder.add("warning"), "--now", soon}).output,
                HasSubstr("\nvalue states   0 alarm, 1 warning, 0 lost, "));
    auto const file =
        folder.add("lost.img", withValue([](shm::record::QelShmMVal& value) { value.state = eStatus_Lost; }));
    EXPECT_THAT(runQelshm({"status", "--image", file, "--color", "always"}).output,
                HasSubstr("\x1b[31m0 alarm, 0 warning, 1 lost, 3 never delivered, 0 stale\x1b[0m\n"));
    auto const states = contentOf(runQelshm({"status", "--json", "--image", file})).at("valueStates");
    EXPECT_EQ(1, states.at("lost"));
    EXPECT_EQ(3, states.at("never"));
}

TEST(StatusCommandTest, OneOldValueAmongFreshOnes_IsNamedWithItsAge) {
    ImageFolder const folder;
    auto const file =
        folder.add("old.img", withValue([](shm::record::QelShmMVal& value) { value.at -= 18000000; }));
    auto const text = runQelshm({"status", "--image", file, "--now", soon}).output;
    EXPECT_THAT(text, HasSubstr(" 1 stale\n"));
    EXPECT_THAT(text, HasSubstr("\noldest value   unit1/inlet1:voltage, 5 h 0 min ago\n"));
    auto const content = contentOf(runQelshm({"status", "--json", "--image", file, "--now", soon}));
    EXPECT_EQ("unit1/inlet1:voltage", content.at("oldestValue").at("path"));
    EXPECT_EQ("0x010001ffffff0001", content.at("oldestValue").at("svid"));
    EXPECT_EQ(18005000, content.at("oldestValue").at("at").at("ageMs"));
}

TEST(StatusCommandTest, MaxAge_IsNotDeceivedByADeliveryAheadOfTheClock) {
    ImageFolder const folder;
    auto const file =
        folder.add("ahead.img", withValue([](shm::record::QelShmMVal& value) { value.at += 3600000; }));
    auto const silent = runQelshm({"status", "--max-age", "60", "--image", file, "--now", late});
    EXPECT_EQ(1, silent.status);
    EXPECT_THAT(silent.output, HasSubstr("condition      silent\n"));
    EXPECT_THAT(silent.output,
                HasSubstr("\nclock          1 value has a time ahead of this machine's clock\n"));
    auto const current = runQelshm({"status", "--max-age", "60", "--image", file, "--now", soon});
    EXPECT_EQ(0, current.status) << "the other values are fresh";
}

TEST(StatusCommandTest, GlobalState_HasTheColourOfItsLed) {
    ImageFolder const folder;
    EXPECT_THAT(runQelshm({"status", "--image", folder.add("alarm")}).output,
                HasSubstr("global state   Child Alarm\nstatus LED     red\n"));
    EXPECT_THAT(runQelshm({"status", "--image", folder.add("updating")}).output,
                HasSubstr("global state   Device is updating\nstatus LED     magenta, blinking\n"));
}

TEST(StatusCommandTest, Color_ShowsConditionAndGlobalState) {
    ImageFolder const folder;
    auto const file = folder.add("alarm");
    auto const outcome = runQelshm({"--color", "always", "status", "--image", file});
    EXPECT_THAT(outcome.output, HasSubstr("condition      \x1b[32mactive\x1b[0m\n"));
    EXPECT_THAT(outcome.output, HasSubstr("global state   \x1b[31mChild Alarm\x1b[0m\n"));
    EXPECT_THAT(runQelshm({"status", "--image", file}).output, Not(HasSubstr("\x1b")));
}

TEST(StatusCommandTest, BrokenTree_IsAWarningAndStatusOne) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"status", "--image", folder.add("cyclic")});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, HasSubstr("condition      active\n"));
    EXPECT_THAT(outcome.errors,
                HasSubstr("qelshm: warning: value slot 1: next links to value slot 0, which is "
                          "linked elsewhere already; link ignored\n"));
}

TEST(StatusCommandTest, NameOfTheFile_CannotHarmATerminal) {
    ImageFolder const folder;
    auto const file = folder.add("\x1b[2J", sampleImage("healthy"));
    auto const outcome = runQelshm({"status", "--image", file});
    EXPECT_THAT(outcome.output, HasSubstr("image \\x1B[2J\n"));
    auto const json = runQelshm({"status", "--json", "--image", file});
    EXPECT_EQ("\\x1B[2J", nlohmann::json::parse(json.output).at("source").at("name"));
}

} // namespace qel::test
