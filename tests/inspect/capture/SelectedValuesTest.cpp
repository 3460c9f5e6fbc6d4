// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/SelectedValues.h"

#include "inspect/naming/ValuePath.h"

#include "tests/inspect/capture/CapturedUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace qel::inspect {

namespace {

using testing::ElementsAre;

class SelectedValuesTest : public testing::Test {
protected:
    void follow(SelectedValues& sut, Image const& image) {
        auto const frame = frameOf(1, last_, image);
        region_.apply(
            checkedFrame(frame.substr(0, FRAME_HEAD_SIZE), content_ = frame.substr(FRAME_HEAD_SIZE)));
        last_ = image;
        sut.follow(region_);
    }

    static std::vector<std::string> namesOf(SelectedValues const& sut) {
        std::vector<std::string> names;
        for (auto const& name : sut.names()) {
            names.push_back(valuePath(name.point, name.key));
        }
        return names;
    }

    FrameRegion region_;
    Image last_;
    std::string content_;
};

} // namespace

TEST_F(SelectedValuesTest, Patterns_SelectInTheOrderOfTheTree) {
    SelectedValues sut({ValuePattern("unit1/**/socket1:current"), ValuePattern("unit1:voltage")});
    follow(sut, test::capturedUnit());
    EXPECT_THAT(namesOf(sut), ElementsAre("unit1:voltage", "unit1/inlet1/circuit1/socket1:current"));
}

TEST_F(SelectedValuesTest, WithoutPatterns_SelectsAll) {
    SelectedValues sut({});
    follow(sut, test::capturedUnit());
    EXPECT_EQ(27U, sut.names().size());
}

TEST_F(SelectedValuesTest, Value_FollowsTheSamples) {
    SelectedValues sut({ValuePattern("unit1/inlet1/circuit1/socket1:voltage")});
    follow(sut, test::unitWith(5, 230.0));
    EXPECT_EQ(230.0, sut.value(0)->value);
    follow(sut, test::unitWith(5, 231.0));
    EXPECT_EQ(231.0, sut.value(0)->value);
    follow(sut, test::wipedUnit());
    EXPECT_EQ(nullptr, sut.value(0)) << "not active";
    follow(sut, test::unitWith(5, 232.0));
    EXPECT_EQ(232.0, sut.value(0)->value);
    EXPECT_EQ(nullptr, sut.value(1)) << "there is only one";
}

TEST_F(SelectedValuesTest, PointThatGoes_HasNoValue) {
    SelectedValues sut({ValuePattern("unit1/**/socket4:voltage"), ValuePattern("unit1/**/socket1:voltage")});
    follow(sut, test::capturedUnit());
    follow(sut,
           test::capturedUnit([](shm::record::Region& region) { region.points[5].next = shm::NO_POSITION; }));
    EXPECT_NE(nullptr, sut.value(0));
    EXPECT_EQ(nullptr, sut.value(1));
}

TEST_F(SelectedValuesTest, TooManyDifferentValues_AreAnError) {
    SelectedValues sut({});
    std::uint16_t key = 0;
    auto const followMany = [&] {
        for (int round = 0; round < 1000; ++round) {
            follow(sut, test::capturedUnit([&](shm::record::Region& region) {
                       for (std::uint32_t pos = 0; pos < 27; ++pos) {
                           region.values[pos].key = ++key;
                       }
                   }));
        }
    };
    EXPECT_THROW(followMany(), TooManyValuesError);
    EXPECT_EQ(SelectedValues::most, sut.names().size());
}

TEST(DeliveredNumberTest, NothingDelivered_HasNoNumber) {
    shm::record::QelShmMVal value{};
    value.value = 1.5;
    value.state = eStatus_NoError;
    EXPECT_EQ(1.5, deliveredNumber(&value));
    value.value = std::numeric_limits<double>::infinity();
    EXPECT_EQ(std::nullopt, deliveredNumber(&value));
    value.value = 1.5;
    value.state = eStatus_ExpectedValue;
    EXPECT_EQ(std::nullopt, deliveredNumber(&value));
    EXPECT_EQ(std::nullopt, deliveredNumber(nullptr));
    value.value = 1.5;
    value.state = static_cast<eStatus_Bits>(1000);
    EXPECT_EQ(std::nullopt, deliveredNumber(&value)) << "a number that is no state";
}

} // namespace qel::inspect
