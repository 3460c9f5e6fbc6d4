// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/ObjectCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qel::inspect {

namespace {

RegionObject objectOf(uid_t uid, mode_t mode, std::uint64_t names = 1) {
    RegionObject object;
    object.uid = uid;
    object.mode = mode;
    object.names = names;
    object.isRegular = true;
    return object;
}

/// "code: found, expected" of each.
std::vector<std::string> textsOf(Findings const& findings) {
    std::vector<std::string> texts;
    texts.reserve(findings.size());
    for (auto const& finding : findings) {
        EXPECT_EQ("object", placeText(finding));
        EXPECT_EQ(0U, finding.offset);
        EXPECT_TRUE(isDamage(finding));
        texts.push_back(std::string(kindOf(finding.code).name) + ": " + finding.found.text() + ", " +
                        finding.expected.text());
    }
    return texts;
}

} // namespace

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ObjectCheckTest, WhatAWriterOfRootMakes_HasNothing) {
    for (mode_t const mode : {0644U, 0640U, 0600U, 0444U, 0755U, 0U}) {
        EXPECT_THAT(checkObject(objectOf(0, mode), std::nullopt), IsEmpty());
        EXPECT_THAT(checkObject(objectOf(0, mode), 1000), IsEmpty());
    }
}

TEST(ObjectCheckTest, OwnerBesideRoot_IsTheHardwareManagersUserAlone) {
    EXPECT_THAT(checkObject(objectOf(3999999999, 0644), 3999999999), IsEmpty());
    EXPECT_THAT(textsOf(checkObject(objectOf(3999999999, 0644), std::nullopt)),
                ElementsAre("owner-not-expected: 3999999999, root (0)"));
    EXPECT_THAT(textsOf(checkObject(objectOf(3999999999, 0644), 0)),
                ElementsAre("owner-not-expected: 3999999999, root (0)"));
    EXPECT_THAT(textsOf(checkObject(objectOf(3999999999, 0644), 3999999998)),
                ElementsAre("owner-not-expected: 3999999999, root or the hardware manager's user"));
}

TEST(ObjectCheckTest, RightsToWriteForGroupOrOthers_AreFound) {
    EXPECT_THAT(textsOf(checkObject(objectOf(0, 0664), std::nullopt)),
                ElementsAre("mode-too-loose: rw-rw-r--, write permission for the owner only"));
    EXPECT_THAT(textsOf(checkObject(objectOf(0, 0646), std::nullopt)),
                ElementsAre("mode-too-loose: rw-r--rw-, write permission for the owner only"));
}

TEST(ObjectCheckTest, SecondName_IsFound) {
    EXPECT_THAT(textsOf(checkObject(objectOf(0, 0644, 2), std::nullopt)),
                ElementsAre("name-not-unique: 2, 1"));
    EXPECT_THAT(checkObject(objectOf(0, 0644, 0), std::nullopt), IsEmpty()) << "its name was removed";
}

TEST(ObjectCheckTest, AllAtOnce_InThisOrder) {
    auto const findings = checkObject(objectOf(3999999999, 0666, 3), std::nullopt);
    ASSERT_EQ(3U, findings.size());
    EXPECT_EQ(FindingCode::OwnerNotExpected, findings[0].code);
    EXPECT_EQ(FindingCode::ModeTooLoose, findings[1].code);
    EXPECT_EQ(FindingCode::NameNotUnique, findings[2].code);
}

TEST(ObjectCheckTest, WhatIsNoRegularFile_IsLookedAtForItsOwnerAlone) {
    auto link = objectOf(0, 0777, 2);
    link.isRegular = false;
    EXPECT_THAT(checkObject(link, std::nullopt), IsEmpty());
    link.uid = 3999999999;
    EXPECT_EQ(1U, checkObject(link, std::nullopt).size());
}

} // namespace qel::inspect
