// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/CapturePlayer.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"
#include "inspect/image/PointTree.h"
#include "tools/replay/RecordingPlayer.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/support/Eventually.h"
#include "tests/support/LedFiles.h"
#include "tests/tools/replay/CaptureFile.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr long long unit = test::pointId(1, 0);
constexpr long long inlet = test::pointId(1, 0, 1);
constexpr long long sensor = test::pointId(1, 1, 1, 1);

class CapturePlayerTest : public testing::Test {
protected:
    /// Images of a unit: inactive, built, active, an alarm, a sensor that comes, the end of the alarm.
    static std::vector<inspect::Image> unitImages() {
        std::vector<inspect::Image> images;
        shm::QelSharedMemoryWriter writer;
        auto const take = [&] {
            images.push_back(inspect::LiveRegion().copy());
        };
        take();
        writer.addStructure({{unit, test::withKeys({key::voltage})},
                             {inlet, test::withKeys({key::voltage, key::activePower})}});
        take();
        writer.setActive();
        take();
        writer.updateMV(inlet | key::activePower, test::measured(2500.0, 1000, eStatus_HighAlarm));
        writer.propagateStates();
        take();
        writer.modifyStructure({unit, unit | key::voltage, inlet, inlet | key::voltage,
                                inlet | key::activePower, sensor, sensor | key::temperature});
        take();
        writer.updateMV(inlet | key::activePower, test::measured(1500.0, 2000, eStatus_NoError));
        writer.propagateStates();
        take();
        return images;
    }

    std::unique_ptr<CapturePlayer> playerOf(test::CaptureFile const& file) {
        return playerOf(file, file.images().size());
    }
    std::unique_ptr<CapturePlayer> playerOf(test::CaptureFile const& file, std::uint64_t samples) {
        return playerOf({selectionOf(file, samples), {}});
    }
    std::unique_ptr<CapturePlayer> playerOf(CapturePlayer::Parts const& parts) {
        return std::make_unique<CapturePlayer>(parts, log_, [this] { ++announced_; });
    }

    static SampleSelection selectionOf(test::CaptureFile const& file, std::uint64_t samples) {
        SampleSelection selection;
        selection.file = file.path();
        selection.samples = samples;
        return selection;
    }

    std::ostringstream out_;
    ReplayLog log_{&out_, ReplaySteps::Samples};
    int announced_ = 0;
};

} // namespace

TEST_F(CapturePlayerTest, New_PublishesNothing) {
    test::CaptureFile const file(unitImages());
    auto const sut = playerOf(file);
    EXPECT_FALSE(test::rawRegionExists());
    EXPECT_FALSE(sut->isActive());
}

TEST_F(CapturePlayerTest, Samples_AppearByteForByteAtTheirTimes) {
    test::CaptureFile const file(unitImages());
    auto const sut = playerOf(file);
    std::vector<bool> const isActive{false, false, true, true, true, true};
    std::vector<int> const announced{0, 1, 1, 1, 2, 2};

    sut->begin();

    for (std::size_t index = 0; index < file.images().size(); ++index) {
        if (index != 0) {
            EXPECT_EQ(index * test::CaptureFile::interval, sut->due());
            sut->step();
        }
        test::expectSame(file.images()[index], inspect::LiveRegion().copy());
        EXPECT_EQ(isActive[index], sut->isActive()) << index;
        EXPECT_EQ(announced[index], announced_) << index;
    }
    EXPECT_EQ(std::nullopt, sut->due());
}

TEST_F(CapturePlayerTest, Samples_MayBeAnyBytes) {
    std::vector<inspect::Image> images;
    for (auto const& image : test::randomImages(30, 51)) {
        images.emplace_back(&image.region(), test::rawRegionSize);
    }
    test::CaptureFile const file(images);
    auto const sut = playerOf(file);
    sut->begin();
    for (auto const& image : images) {
        test::expectSame(image, inspect::LiveRegion().copy());
        if (sut->due()) {
            sut->step();
        }
    }
}

TEST_F(CapturePlayerTest, Limit_EndsEarlier) {
    test::CaptureFile const file(unitImages());
    auto const sut = playerOf(file, 2);
    sut->begin();
    sut->step();
    EXPECT_EQ(std::nullopt, sut->due());
    test::expectSame(file.images()[1], inspect::LiveRegion().copy());
}

TEST_F(CapturePlayerTest, Log_TellsTheGlobalStateAndTheStructure) {
    test::CaptureFile const file(unitImages());
    auto const sut = playerOf(file);
    sut->begin();
    while (sut->due()) {
        sut->step();
    }
    log_.ended("done", 1.0, sut->globalState());
    EXPECT_EQ("qel-replay: region active: 0 points, 0 values; 1 capture, 6 samples\n"
              "2023-06-09T07:34:30.540Z  structure  changed, now 2 points, 3 values\n"
              "2023-06-09T07:34:31.540Z  global     On => Child Alarm\n"
              "2023-06-09T07:34:32.040Z  structure  changed, now 3 points, 4 values\n"
              "2023-06-09T07:34:32.540Z  global     Child Alarm => On\n"
              "qel-replay: done: 6 samples, 6 updates in 1.0 s; 2 structure changes; global state On\n",
              out_.str());
}

// A reader would go round in it for ever.
TEST_F(CapturePlayerTest, RecordedCircle_IsCutAndReported) {
    auto const images = unitImages();
    auto region = std::make_unique<shm::record::Region>(images[3].region());
    auto const inletPos = inspect::PointTree(images[3]).nodes().at(1).pos;
    region->points[inletPos].next = inletPos;
    test::CaptureFile const file(
        {images[2], inspect::Image(std::move(region), shm::REGION_SIZE), images[3], images[4]});
    auto const sut = playerOf(file);

    sut->begin();
    sut->step();

    EXPECT_TRUE(inspect::PointTree(inspect::LiveRegion().copy()).skippedLinks().empty());
    test::expectSame(images[3], inspect::LiveRegion().copy());
    sut->step();
    EXPECT_NE(
        std::string::npos,
        out_.str().find("2023-06-09T07:34:30.540Z  damage     1 link of the sample cut that led back to "
                        "where readers had been\n"))
        << out_.str();
    EXPECT_NE(std::string::npos, out_.str().find("2023-06-09T07:34:31.040Z  damage     no link"))
        << out_.str();
}

TEST_F(CapturePlayerTest, Present_MovesTheTimesOfPointsAndValues) {
    constexpr std::uint64_t now = 1795000000000;
    constexpr std::uint64_t recorded0 = test::CaptureFile::startTime + test::CaptureFile::firstTime;
    auto const images = unitImages(); // the inlet's power: at 1000 with an alarm, at 2000 without
    test::CaptureFile const file(images);
    auto const sut = playerOf({selectionOf(file, 6), Stamps::present(2.0, [=] { return now; })});
    sut->begin();
    while (sut->due()) {
        sut->step();
    }
    auto const image = inspect::LiveRegion().copy();
    inspect::PointTree const tree(image);
    auto const power = *(tree.valuesOf(tree.nodes().at(1)).begin() + 1);
    ASSERT_EQ(key::activePower, image.value(power)->key);
    EXPECT_EQ(now - (recorded0 - 2000), image.value(power)->at) << "long before the capture";
    EXPECT_EQ(1500.0, image.value(power)->value);
}

TEST_F(CapturePlayerTest, Loop_LetsTimesGoOn) {
    auto const images = unitImages();
    test::CaptureFile const file({images[3], images[5]});
    auto selection = selectionOf(file, 2);
    selection.isEndless = true;
    selection.limit = 5;
    auto const sut = playerOf({selection, {}});
    sut->begin();
    while (sut->due()) {
        sut->step();
    }
    auto const image = inspect::LiveRegion().copy();
    inspect::PointTree const tree(image);
    auto const power = *(tree.valuesOf(tree.nodes().at(1)).begin() + 1);
    EXPECT_EQ(2500.0, image.value(power)->value);
    EXPECT_EQ(1000 + 4 * test::CaptureFile::interval, image.value(power)->at) << "two repetitions later";
    EXPECT_EQ("5 samples replayed, stopped at --until", sut->endReason());
}

TEST_F(CapturePlayerTest, Led_FollowsTheGlobalState) {
    test::CaptureFile const file(unitImages());
    test::restoreLedFiles();
    auto const sut = playerOf(file, 4);
    sut->begin();
    EXPECT_TRUE(test::eventually([] { return test::ledContents() == "0/1/0"; })) << test::ledContents();
    while (sut->due()) {
        sut->step();
    }
    EXPECT_EQ(eStatus_ChildAlarm, sut->globalState());
    EXPECT_TRUE(test::eventually([] { return test::ledContents() == "1/0/0"; })) << test::ledContents();
}

TEST_F(CapturePlayerTest, End_RemovesTheRegion) {
    test::CaptureFile const file(unitImages());
    auto sut = playerOf(file);
    sut->begin();
    EXPECT_TRUE(test::rawRegionExists());
    sut.reset();
    EXPECT_FALSE(test::rawRegionExists());
}

} // namespace qel::tools
