// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/PointPath.h"

#include "format/ValueKeys.h"
#include "inspect/naming/Svid.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <random>
#include <string>
#include <string_view>

namespace qel::inspect {

using test::pointId;

struct Named {
    long long svid;
    char const* path;
};

std::ostream& operator<<(std::ostream& out, Named const& named) {
    return out << named.path;
}

class PointPathOfTest : public testing::TestWithParam<Named> {};

TEST_P(PointPathOfTest, LeadsThereAndBack) {
    EXPECT_EQ(GetParam().path, pointPath(GetParam().svid));
    EXPECT_EQ(GetParam().svid, parsePath(GetParam().path));
}

INSTANTIATE_TEST_SUITE_P(
    Electrical, PointPathOfTest,
    testing::Values(Named{pointId(1, 0), "unit1"}, Named{pointId(0, 0), "unit0"},
                    Named{pointId(127, 0), "unit127"}, Named{pointId(1, 0, 1), "unit1/inlet1"},
                    Named{pointId(1, 0, 1, 2), "unit1/inlet1/phase2"},
                    Named{pointId(1, 0, 1, 2, 3), "unit1/inlet1/phase2/circuit3"},
                    Named{pointId(1, 0, 1, 2, 3, 5), "unit1/inlet1/phase2/circuit3/socket5"},
                    Named{pointId(1, 0, 1, -1, 3, 5), "unit1/inlet1/circuit3/socket5"},
                    Named{pointId(1, 0, 1, 2, 0, 5), "unit1/inlet1/phase2/circuit0/socket5"},
                    Named{pointId(1, 0, -1, 2), "unit1/phase2"}));

INSTANTIATE_TEST_SUITE_P(Sensors, PointPathOfTest,
                         testing::Values(Named{pointId(1, 1, 1), "unit1/sensor1"},
                                         Named{pointId(2, 1, 1, 2), "unit2/sensor1.2"},
                                         Named{pointId(1, 1, 0, 0, 0, 0), "unit1/sensor0.0.0.0"}));

INSTANTIATE_TEST_SUITE_P(
    Groups, PointPathOfTest,
    testing::Values(Named{pointId(1, 2, -1, -1, -1, 1), "group1"},
                    Named{pointId(2, 2, -1, -1, -1, 1), "group2.1"},
                    Named{pointId(0, 2, -1, -1, -1, 1), "group0.1"}, Named{pointId(1, 2, 1), "unit1/group1"},
                    Named{pointId(1, 2, 1, -1, -1, 3), "unit1/inlet1/socket-group3"},
                    Named{pointId(1, 2, 1, 2, 3, 4), "unit1/inlet1/phase2/circuit3/group4"}));

INSTANTIATE_TEST_SUITE_P(Monitors, PointPathOfTest,
                         testing::Values(Named{pointId(1, 4, 1), "unit1/rcm1"},
                                         Named{pointId(1, 4, 1, 2), "unit1/inlet1/rcm2"},
                                         Named{pointId(1, 4, 1, -1, 2), "unit1/inlet1/circuit-rcm2"},
                                         Named{pointId(1, 4, 1, -1, 2, 3), "unit1/inlet1/circuit2/rcm3"}));

INSTANTIATE_TEST_SUITE_P(Others, PointPathOfTest,
                         testing::Values(Named{pointId(-1, 0), "0xff00ffffffff0000"},
                                         Named{pointId(1, 3, 1), "0x010301ffffff0000"},
                                         Named{pointId(1, -2, 1), "0x01fe01ffffff0000"},
                                         Named{pointId(1, 0, -2), "0x0100feffffff0000"},
                                         Named{pointId(1, 1, 1, -1, 2), "0x010101ff02ff0000"},
                                         Named{pointId(1, 1), "0x0101ffffffff0000"},
                                         Named{pointId(1, 2), "0x0102ffffffff0000"},
                                         Named{pointId(1, 2, -1, 1, -1, 1), "0x0102ff01ff010000"},
                                         Named{pointId(1, 4), "0x0104ffffffff0000"},
                                         Named{0, "unit0/inlet0/phase0/circuit0/socket0"}));

TEST(PointPathTest, TheKeyIsNotLookedAt) {
    EXPECT_EQ("unit1/inlet1", pointPath(pointId(1, 0, 1) | shm::key::activePower));
    EXPECT_EQ("0x0103ffffffff0000", pointPath(pointId(1, 3) | shm::key::activePower));
    EXPECT_EQ(pointId(1, 3), parsePath("0x0103ffffffff0013"));
}

TEST(PointPathTest, UpperAndLowerCaseAreTheSame) {
    EXPECT_EQ(pointId(1, 0, 1), parsePath("Unit1/INLET1"));
    EXPECT_EQ(pointId(-1, 0), parsePath("0XFF00FFFFFFFF0000"));
}

TEST(PointPathTest, AnyIdOfAPointCanBeReadBack) {
    auto random = test::randomNumbers(11);
    std::uniform_int_distribution<int> anyByte(-128, 127);
    std::uniform_int_distribution<int> smallNumber(0, 3);
    std::uniform_int_distribution<int> choice(0, 9);
    // Mostly what occurs, so that every scheme is met; sometimes anything.
    auto const part = [&] {
        auto const chosen = choice(random);
        return chosen < 4 ? -1 : chosen < 9 ? smallNumber(random) : anyByte(random);
    };
    std::map<std::string, long long> seen;
    int readable = 0;
    for (int round = 0; round < 200000; ++round) {
        int const kind = choice(random) < 9 ? choice(random) % 5 : anyByte(random);
        auto const svid = pointId(part(), kind, part(), part(), part(), part());
        auto const path = pointPath(svid);
        ASSERT_EQ(svid, parsePath(path)) << path;
        ASSERT_EQ(path, pointPath(*parsePath(path)));
        ASSERT_EQ(svid, seen.emplace(path, svid).first->second) << path;
        ASSERT_EQ(std::string::npos, path.find(' '));
        readable += path.rfind("0x", 0) == 0 ? 0 : 1;
    }
    EXPECT_GT(readable, 20000);
}

TEST(PointPathTest, ATextMayNotNameTwoPoints) {
    // All texts that read are the ones that are written.
    for (int first = -1; first < 3; ++first) {
        for (int second = -1; second < 3; ++second) {
            for (int third = -1; third < 3; ++third) {
                for (int kind = 0; kind < 5; ++kind) {
                    for (int fourth = -1; fourth < 3; ++fourth) {
                        auto const svid = pointId(1, kind, first, second, third, fourth);
                        EXPECT_EQ(svid, parsePath(pointPath(svid)));
                    }
                }
            }
        }
    }
}

class NoPathTest : public testing::TestWithParam<char const*> {};

TEST_P(NoPathTest, IsRefused) {
    EXPECT_EQ(std::nullopt, parsePath(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NoPathTest,
    testing::Values("", "/", "unit", "unit1/", "/unit1", "unit01", "unit128", "unit-1", "unit1/inlet",
                    "unit1/inlet1/inlet1", "unit1/socket1/inlet1", "unit1inlet1", "unit1//inlet1",
                    "unit1/sensor", "unit1/sensor1.", "unit1/sensor1.2.3.4.5", "unit1/inlet1/sensor2",
                    "unit1/sensor1/inlet1", "group", "group1.1", "group1.", "group1.2.3", "group1/inlet1",
                    "unit1/inlet-rcm1", "unit1/inlet1/phase-rcm1", "unit1/phase-rcm1", "unit1/rcm1/phase2",
                    "unit1/inlet1/circuit-2", "unit1/socket-group1", "unit1/inlet1/circuit-circuit1",
                    "unit1/inlet1/phase1/circuit1/socket1/rcm1", "unit1 ", " unit1", "0x", "0xg", "12",
                    "inlet1", "unit1/rcm", "unit1/inlet1/circuit-rcm", "unit1/inlet1x", "unit1/+1"));

struct Labelled {
    unsigned long long svid;
    char const* label;
};

std::ostream& operator<<(std::ostream& out, Labelled const& labelled) {
    return out << labelled.label;
}

class PointLabelTest : public testing::TestWithParam<Labelled> {};

TEST_P(PointLabelTest, NamesKindAndPosition) {
    EXPECT_EQ(GetParam().label, pointLabel(static_cast<long long>(GetParam().svid)));
}

TEST_P(PointLabelTest, StartsWithTheKindsName) {
    std::string_view const label = GetParam().label;
    EXPECT_EQ(label.substr(0, label.find(' ')), kindName(static_cast<long long>(GetParam().svid)));
}

INSTANTIATE_TEST_SUITE_P(
    Points, PointLabelTest,
    testing::Values(Labelled{0x0100FFFFFFFF0000, "unit 1"}, Labelled{0x0200FFFFFFFF0034, "unit 2"},
                    Labelled{0x010001FFFFFF0000, "inlet 1"}, Labelled{0x01000203FFFF0000, "phase 2/3"},
                    Labelled{0x010001FF02FF0000, "circuit 1/2"},
                    Labelled{0x0100010302FF0000, "circuit 1/3/2"},
                    Labelled{0x010001FF02050013, "socket 1/2/5"}, Labelled{0x01010101FFFF0000, "sensor 1/1"},
                    Labelled{0x0102FFFFFF010000, "group 1"}, Labelled{0x0104FFFFFFFF0000, "rcm 1"},
                    Labelled{0x010301FFFFFF0000, "point 1"}));

} // namespace qel::inspect
