// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WatchJson.h"

#include "tests/tools/qelshm/stream/StreamFixture.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <sstream>

namespace qel::tools {

namespace {

class WatchJsonTest : public test::StreamFixture {
protected:
    std::string take(WatchJson& sut) {
        out.str("");
        lookWith(sut);
        return out.str();
    }

    /// Compares with a file of golden/, which is checked against the schema.
    static void expectGolden(std::string const& name, std::string const& document) {
        auto const path = std::string(QEL_GOLDEN_DIR "/") + name;
        if (std::getenv("QEL_UPDATE_GOLDEN") != nullptr) { // NOLINT(concurrency-mt-unsafe): no other thread
            std::ofstream(path) << document;
        }
        std::ifstream file(path);
        std::string const golden{std::istreambuf_iterator<char>(file), {}};
        EXPECT_EQ(golden, document) << name;
    }

    std::ostringstream out;
};

} // namespace

TEST_F(WatchJsonTest, Picture_IsOneLineWithAllValues) {
    unit.deliver(unit.inletPower, 4000.5, time, eStatus_HighAlarm);
    unit.deliver(unit.socket2Power, std::numeric_limits<double>::infinity(), time);
    WatchJson sut(out, std::nullopt);
    auto const line = take(sut);
    EXPECT_EQ(line.size() - 1, line.find('\n'));
    expectGolden("watch-picture.stream.json", line);
    EXPECT_EQ("", take(sut));
}

TEST_F(WatchJsonTest, ChangesOfValuesAndPoints_AreALineEach) {
    WatchJson sut(out, std::nullopt);
    take(sut);
    unit.deliver(unit.inletPower, 4000.5, time, eStatus_HighAlarm);
    expectGolden("watch-value.stream.json", take(sut));
    unit.region().points[unit.inlet].state = eStatus_OnAlarm;
    expectGolden("watch-point.stream.json", take(sut));
}

TEST_F(WatchJsonTest, RegionThatIsNotActiveAnyMore_IsALine) {
    WatchJson sut(out, std::nullopt);
    take(sut);
    unit.region().root.version = 0;
    expectGolden("watch-condition.stream.json", take(sut));
    unit.region().root.version = shm::ACTIVE_VERSION;
    EXPECT_EQ("picture", nlohmann::json::parse(take(sut)).at("event"));
}

TEST_F(WatchJsonTest, Selection_IsAllThatThePictureHolds) {
    names = watch::WatchedNames({"unit1/inlet1/socket2"});
    finder = stream::ChangeFinder(names);
    WatchJson sut(out, std::nullopt);
    auto const points = nlohmann::json::parse(take(sut)).at("points");
    ASSERT_EQ(3U, points.size()) << "the points above, too";
    EXPECT_EQ(0U, points[1].at("values").size());
    EXPECT_EQ(2U, points[2].at("values").size());
}

TEST_F(WatchJsonTest, Count_EndsTheLines) {
    WatchJson sut(out, 1);
    take(sut);
    EXPECT_FALSE(sut.isDone()) << "the picture does not count";
    unit.deliver(unit.inletPower, 1.0, time);
    unit.deliver(unit.inletVoltage, 1.0, time);
    EXPECT_EQ("unit1/inlet1:voltage", nlohmann::json::parse(take(sut)).at("path"));
    EXPECT_TRUE(sut.isDone());
}

} // namespace qel::tools
