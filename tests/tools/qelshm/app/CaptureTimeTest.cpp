// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/CaptureTime.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace qel::tools {

namespace {

using From = inspect::CaptureMoment::From;

void expectMoment(From from, std::uint64_t ms, std::string const& text) {
    auto const moment = parseCaptureTime(text);
    ASSERT_TRUE(moment) << text;
    EXPECT_EQ(from, moment->from) << text;
    EXPECT_EQ(ms, moment->ms) << text;
    EXPECT_EQ("", captureTimeProblem(text));
}

} // namespace

TEST(CaptureTimeTest, ClockStartAndEnd_AreRead) {
    expectMoment(From::Clock, 1700000000000, "2023-11-14T22:13:20Z");
    expectMoment(From::Clock, 1700000000500, "2023-11-14T22:13:20.5Z");
    expectMoment(From::Start, 300000, "+5m");
    expectMoment(From::End, 30000, "-30s");
    expectMoment(From::End, 7200000, "-2h");
    expectMoment(From::End, 86400000, "-1d");
    expectMoment(From::Start, 0, "+0s");
    expectMoment(From::End, 5400000, "-1.5h");
    expectMoment(From::Start, 500, "+500ms");
}

TEST(CaptureTimeTest, OtherTexts_AreRefused) {
    for (auto const* const text :
         {"", "-", "10m", "-10", "-m", "+5 m", "--5s", "-5x", "yesterday", "2023-11-14 22:13:20", "-400000d",
          "-99999999999d", "-18446744073709551616s"}) {
        EXPECT_FALSE(parseCaptureTime(text)) << text;
        EXPECT_THAT(captureTimeProblem(text),
                    testing::HasSubstr("is no moment of a capture; expected for example"));
    }
}

TEST(CaptureTimeTest, MomentOutside_NamesFirstAndLastTime) {
    test::ImageFolder const folder;
    inspect::CaptureTimeline const timeline(test::sampleCapture());
    EXPECT_EQ(timeline.last() - 10000, captureTime(timeline, "-10s"));
    try {
        captureTime(timeline, "-10m");
        FAIL() << "no error";
    } catch (CaptureTimeError const& error) {
        EXPECT_STREQ("-10m is outside the capture night.rec, which lasts from 2023-11-14T22:13:20Z to "
                     "2023-11-14T22:14:20Z",
                     error.what());
    }
}

TEST(CaptureTimeTest, EveryVerbThatTakesAnImage_ShowsTheMoment) {
    test::ImageFolder const folder;
    auto const file = test::sampleCapture();
    std::vector<std::vector<std::string>> const verbs{
        {"status"},          {"tree"}, {"list"},  {"get", "unit1/inlet1"},
        {"find", "socket2"}, {"why"},  {"check"}, {"dump", "x.img"}};
    for (auto const& verb : verbs) {
        std::vector<std::string> arguments{"--image", file, "--at", "-35s", "--json"};
        arguments.insert(arguments.end(), verb.begin(), verb.end());
        auto const outcome = test::runQelshm(arguments);
        EXPECT_EQ("", outcome.errors) << verb.front();
        auto const document = nlohmann::json::parse(outcome.output);
        EXPECT_EQ("2023-11-14T22:13:45Z", document.at("source").at("capture").at("time").at("text"))
            << verb.front();
        EXPECT_EQ(test::captureStart + 25000, document.at("now")) << "ages count from the sample";
    }
    auto const dumped = test::runQelshm({"--image", "x.img", "why"}).output;
    EXPECT_EQ(dumped.substr(0, dumped.find('\n')), "the unit is Child Alarm") << "as it was at that moment";
}

TEST(CaptureTimeTest, MomentWithoutACapture_IsAnError) {
    test::ImageFolder const folder;
    auto const image = folder.add("healthy");
    EXPECT_EQ(2, test::runQelshm({"--at", "-5s", "status"}).status);
    EXPECT_EQ("qelshm: --at requires --image\n", test::runQelshm({"--at", "-5s", "status"}).errors);
    EXPECT_EQ("qelshm: --at needs a capture of record; healthy.img is an image of a single moment\n",
              test::runQelshm({"--image", image, "--at", "-5s", "status"}).errors);
    EXPECT_EQ(2, test::runQelshm({"--image", image, "--at", "soon", "status"}).status);
}

} // namespace qel::tools
