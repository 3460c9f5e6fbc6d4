// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// checkRegion on the regions of a writer whose sensors come and go.

#include "inspect/check/RegionCheck.h"

#include "inspect/image/PointTree.h"
#include "tests/inspect/RandomUnit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>

namespace qel::inspect {

namespace {

struct Course {
    std::uint32_t seed;
    int structures;
    int largest;
    bool leaveOrphans;
    bool reusesTheirParents; ///< slots are so scarce that those of their parents are soon taken
};

std::ostream& operator<<(std::ostream& out, Course const& course) {
    return out << course.structures << " structures of up to " << course.largest << " points";
}

std::string textOf(Findings const& findings) {
    std::string text;
    for (auto const& finding : findings) {
        text += std::string(kindOf(finding.code).name) + ' ' + placeText(finding) + ' ' +
                std::string(finding.field.name) + '\n';
    }
    return text;
}

bool isUnlistedChild(Finding const& finding) {
    return finding.code == FindingCode::ChildNotListed;
}

class RegionCheckStructuresTest : public testing::TestWithParam<Course> {
protected:
    test::LogCapture const quiet{"qel", log4cpp::Priority::FATAL};
};

TEST_P(RegionCheckStructuresTest, OfARealWriterGiveNoFinding) {
    auto const& course = GetParam();
    test::RandomUnit unit(course.seed, course.largest, course.leaveOrphans);
    std::size_t most = 0;
    int withUnlisted = 0;
    for (int i = 0; i < course.structures; ++i) {
        unit.step();
        auto const image = unit.image();
        auto findings = checkRegion(image);
        auto const kept = std::remove_if(findings.begin(), findings.end(), isUnlistedChild);
        withUnlisted += kept != findings.end() ? 1 : 0;
        findings.erase(kept, findings.end());
        ASSERT_EQ("", textOf(findings)) << "structure " << i;
        most = std::max(most, PointTree(image).nodes().size());
    }
    // The course reached what it is for.
    EXPECT_GE(most, static_cast<std::size_t>(course.largest) * 3 / 4);
    EXPECT_GT(unit.removals(), course.structures / 4);
    EXPECT_EQ(course.reusesTheirParents, withUnlisted > 0);
    EXPECT_EQ(course.leaveOrphans, unit.refusals() > 0);
}

INSTANTIATE_TEST_SUITE_P(Courses, RegionCheckStructuresTest,
                         testing::Values(Course{1, test::rounds(2500, 24500), 12, false, false},
                                         Course{2, test::rounds(2500, 24500), 30, false, false},
                                         Course{3, test::rounds(2500, 24500), 15, true, false},
                                         Course{4, 24500, 40, true, false},
                                         Course{5, 1000, 350, false, false},
                                         Course{6, 1000, 350, true, true}),
                         [](auto const& course) { return "Seed" + std::to_string(course.param.seed); });

} // namespace

} // namespace qel::inspect
