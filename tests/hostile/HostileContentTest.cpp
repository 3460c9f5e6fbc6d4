// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/HostileUnit.h"

#include "tests/support/Rounds.h"

#include <cfloat>
#include <limits>
#include <random>

namespace qel::test {

namespace {

using Place = GuardedMappings::Place;
using Numbers = std::numeric_limits<double>;

constexpr std::uint32_t seed = 20240612;

constexpr double hostileDoubles[] = {Numbers::quiet_NaN(),
                                     Numbers::signaling_NaN(),
                                     -Numbers::quiet_NaN(),
                                     Numbers::infinity(),
                                     -Numbers::infinity(),
                                     Numbers::denorm_min(),
                                     -Numbers::denorm_min(),
                                     DBL_MIN / 2,
                                     DBL_MAX,
                                     -DBL_MAX,
                                     1e308,
                                     -1e308,
                                     9.3e18,
                                     -0.0,
                                     0.0};
constexpr std::int32_t hostileStates[] = {-2,
                                          -1,
                                          0,
                                          17,
                                          43,
                                          44,
                                          -3,
                                          255,
                                          std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::int32_t>::max()};

/// What a slot holds beside its links.
class HostileContentTest : public HostileUnit {
protected:
    template <typename Number>
    void setRandom(std::size_t offset) {
        raw.set<Number>(offset, static_cast<Number>((std::uint64_t{random()} << 32U) | random()));
    }
    std::uint32_t pick(std::size_t count) { return static_cast<std::uint32_t>(random() % count); }

    void scramblePoint(std::uint32_t pos) {
        setRandom<std::uint64_t>(rawPoint(pos) + field::guid);
        if (pick(2) == 0) { // a kind that is known, and few enough ids for some to be there twice
            raw.set<std::uint64_t>(rawPoint(pos) + field::guid, std::uint64_t{pick(6)} << 48U | pick(4));
        }
        setRandom<std::uint64_t>(rawPoint(pos) + field::pointAt);
        setRandom<std::uint8_t>(rawPoint(pos) + field::pointType);
        raw.set(rawPoint(pos) + field::pointState, hostileStates[pick(std::size(hostileStates))]);
    }
    void scrambleValue(std::uint32_t pos) {
        setRandom<std::uint64_t>(rawValue(pos));
        if (pick(2) == 0) {
            raw.set(rawValue(pos), hostileDoubles[pick(std::size(hostileDoubles))]);
        }
        setRandom<std::uint64_t>(rawValue(pos) + field::valueAt);
        setRandom<std::uint16_t>(rawValue(pos) + field::valueKey);
        if (pick(2) == 0) {
            raw.set(rawValue(pos) + field::valueKey, static_cast<std::uint16_t>(pick(0x210)));
        }
        raw.set(rawValue(pos) + field::valueState, hostileStates[pick(std::size(hostileStates))]);
    }

    std::mt19937 random = randomNumbers(seed);
};

TEST_P(HostileContentTest, EveryVersion_IsShown_AndTheTreeIsReadAllTheSame) {
    for (int version = 0; version <= 0xFF; ++version) {
        ask(field::version, static_cast<std::uint8_t>(version));
    }
    EXPECT_EQ(256, asked);
}

TEST_P(HostileContentTest, EveryType_IsRendered) {
    for (std::uint32_t pos = 0; pos < samplePoints; ++pos) {
        for (int type = 0; type <= 0xFF; type += rounds(17, 1)) {
            ask(rawPoint(pos) + field::pointType, static_cast<std::uint8_t>(type));
        }
    }
    EXPECT_EQ(0, endless);
}

TEST_P(HostileContentTest, EveryHostileState_IsRendered) {
    for (auto const state : hostileStates) {
        ask(field::rootState, state);
        for (std::uint32_t pos = 0; pos < samplePoints; ++pos) {
            ask(rawPoint(pos) + field::pointState, state);
        }
        for (std::uint32_t pos = 0; pos < sampleValues; ++pos) {
            ask(rawValue(pos) + field::valueState, state);
        }
    }
    EXPECT_EQ(0, endless);
}

TEST_P(HostileContentTest, EveryHostileNumber_IsRendered) {
    for (auto const number : hostileDoubles) {
        for (std::uint32_t pos = 0; pos < sampleValues; ++pos) {
            ask(rawValue(pos), number);
        }
    }
    EXPECT_EQ(0, endless);
}

TEST_P(HostileContentTest, RandomContentOfSoundLinks_IsReadAndRendered) {
    for (int round = 0, count = rounds(300, 6000); round < count; ++round) {
        for (std::uint32_t pos = 0; pos < samplePoints; ++pos) {
            scramblePoint(pos);
        }
        for (std::uint32_t pos = 0; pos < sampleValues; ++pos) {
            scrambleValue(pos);
        }
        setRandom<std::uint64_t>(rawRootOffset);
        setRandom<std::uint32_t>(field::rootState);
        askAsItIs("round " + std::to_string(round));
    }
    EXPECT_EQ(0, endless);
}

TEST_P(HostileContentTest, RandomBytesEverywhere_AreReadAndRendered) {
    for (int round = 0, count = rounds(30, 3000); round < count; ++round) {
        for (std::size_t offset = 0; offset < rawRegionSize; offset += sizeof(std::uint32_t)) {
            setRandom<std::uint32_t>(offset);
        }
        // Heads that are in range, or nothing would be reached.
        raw.set<std::uint32_t>(field::devices, pick(800));
        raw.set<std::uint32_t>(field::groups, pick(800));
        for (int i = 0; i < 100; ++i) {
            raw.set<std::uint32_t>(rawPoint(pick(800)) + field::mvs, pick(8800));
        }
        askAsItIs("round " + std::to_string(round));
    }
    EXPECT_GT(asked, 0);
}

TEST_P(HostileContentTest, OneByteRepeated_IsReadAndRendered) {
    for (int byte = 0; byte <= 0xFF; ++byte) {
        raw.fill(static_cast<std::uint8_t>(byte));
        askAsItIs("bytes of " + std::to_string(byte));
    }
    EXPECT_EQ(1, endless); // slot 0 leads to slot 0
}

INSTANTIATE_TEST_SUITE_P(Region, HostileContentTest,
                         testing::Values(Place::BehindFrontGuard, Place::BeforeRearGuard), placeName);

} // namespace

} // namespace qel::test
