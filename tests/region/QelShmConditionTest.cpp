// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmCondition.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace std::chrono_literals;
using shm::ANY_AGE;
using shm::conditionOf;
using shm::QelShmCondition;
using shm::QelShmRegionFacts;

constexpr QelShmRegionFacts current() {
    QelShmRegionFacts facts;
    facts.isHeld = true;
    facts.isNamed = true;
    facts.isSame = true;
    facts.isActive = true;
    facts.newest = 1'000'000;
    facts.now = 1'000'000;
    return facts;
}
static_assert(conditionOf(current(), 0ms) == QelShmCondition::Active);
static_assert(sizeof(QelShmCondition) == 1);

std::string textOf(QelShmCondition condition) {
    std::ostringstream text;
    text << condition;
    return text.str();
}

TEST(QelShmConditionTest, Text_IsItsNameInSmallLetters) {
    EXPECT_EQ(textOf(QelShmCondition::Active), "active");
    EXPECT_EQ(textOf(QelShmCondition::Silent), "silent");
    EXPECT_EQ(textOf(QelShmCondition::Inactive), "inactive");
    EXPECT_EQ(textOf(QelShmCondition::Replaced), "replaced");
    EXPECT_EQ(textOf(QelShmCondition::Gone), "gone");
    EXPECT_EQ(textOf(static_cast<QelShmCondition>(5)), "");
}

/// The table of the documentation once more, by the bits held, named, same, abandoned, active.
QelShmCondition expected(bool held, bool named, bool same, bool abandoned, bool active, bool silent) {
    if (!held) {
        return named ? QelShmCondition::Inactive : QelShmCondition::Gone;
    }
    if (!named || (same && abandoned)) {
        return QelShmCondition::Gone;
    }
    if (!same) {
        return QelShmCondition::Replaced;
    }
    return !active ? QelShmCondition::Inactive : silent ? QelShmCondition::Silent : QelShmCondition::Active;
}

TEST(QelShmConditionTest, EveryCombinationOfFacts_IsAsTheTableSays) {
    for (unsigned int bits = 0; bits < 64; ++bits) {
        auto const bit = [bits](unsigned int number) {
            return (bits >> number & 1U) != 0;
        };
        QelShmRegionFacts facts;
        facts.isHeld = bit(0);
        facts.isNamed = bit(1);
        facts.isSame = bit(2);
        facts.isAbandoned = bit(3);
        facts.isActive = bit(4);
        facts.now = 10'000;
        facts.newest = bit(5) ? 8'000 : 9'000;
        EXPECT_EQ(conditionOf(facts, 1s), expected(bit(0), bit(1), bit(2), bit(3), bit(4), bit(5))) << bits;
    }
}

TEST(QelShmConditionTest, Age_IsComparedInclusively) {
    auto facts = current();
    facts.newest = facts.now - 1000;
    EXPECT_EQ(conditionOf(facts, 1000ms), QelShmCondition::Active);
    EXPECT_EQ(conditionOf(facts, 999ms), QelShmCondition::Silent);
}

TEST(QelShmConditionTest, DeliveryFromTheFuture_IsCurrent) {
    auto facts = current();
    facts.newest = facts.now + 1'000'000;
    EXPECT_EQ(conditionOf(facts, 0ms), QelShmCondition::Active);
    EXPECT_EQ(conditionOf(facts, -1ms), QelShmCondition::Active);
}

TEST(QelShmConditionTest, NoDeliveryEver_IsSilentAtAnyLimitedAge) {
    auto facts = current();
    facts.newest = 0;
    EXPECT_EQ(conditionOf(facts, ANY_AGE - 1ms), QelShmCondition::Silent);
    facts.now = 0;
    EXPECT_EQ(conditionOf(facts, 1h), QelShmCondition::Silent);
    EXPECT_EQ(conditionOf(facts, ANY_AGE), QelShmCondition::Active);
}

TEST(QelShmConditionTest, AgeOfZeroOrBelow_AllowsThisMillisecondAlone) {
    auto facts = current();
    for (auto const age : {0ms, -1ms, std::chrono::milliseconds::min()}) {
        facts.newest = facts.now;
        EXPECT_EQ(conditionOf(facts, age), QelShmCondition::Active);
        facts.newest = facts.now - 1;
        EXPECT_EQ(conditionOf(facts, age), QelShmCondition::Silent);
    }
}

TEST(QelShmConditionTest, HugeAge_DoesNotOverflow) {
    auto facts = current();
    facts.newest = 1;
    facts.now = ~std::uint64_t{0};
    EXPECT_EQ(conditionOf(facts, ANY_AGE - 1ms), QelShmCondition::Silent);
}

} // namespace
