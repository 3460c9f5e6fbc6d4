// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/Rendering.h"

#include "format/HexText.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"

#include "tests/support/RandomNumbers.h"
#include "tests/support/Rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <memory>
#include <random>
#include <string>

namespace qel::test {

namespace {

namespace key = shm::key;
using tav::ValueFormatter;
using Numbers = std::numeric_limits<double>;

constexpr std::uint32_t seed = 20240614;

constexpr double widest[] = {DBL_MAX,
                             -DBL_MAX,
                             1e308,
                             -1e308,
                             Numbers::infinity(),
                             -Numbers::infinity(),
                             Numbers::quiet_NaN(),
                             -Numbers::quiet_NaN(),
                             -0.0,
                             Numbers::denorm_min(),
                             -999999999999999999999999999.9,
                             1e27};

/// A slot alone on the heap, so that a sanitizer sees the first byte beyond it.
template <typename Slot>
std::unique_ptr<Slot> wipedSlot() {
    auto slot = std::make_unique<Slot>();
    std::memset(static_cast<void*>(slot.get()), shm::WIPE_BYTE, sizeof(Slot));
    return slot;
}

template <typename Slot>
void randomize(Slot& slot, std::mt19937& random) {
    std::uint8_t bytes[sizeof(Slot)];
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    std::memcpy(static_cast<void*>(&slot), bytes, sizeof bytes);
}

TEST(HostileRenderingTest, EveryKeyWithTheWidestNumbers_StaysWithinItsBuffer) {
    auto const slot = wipedSlot<shm::record::QelShmMVal>();
    slot->state = static_cast<eStatus_Bits>(17);
    for (unsigned int key = 0; key <= 0xFFFF; key += key < 0x300 ? 1 : static_cast<unsigned>(rounds(97, 1))) {
        slot->key = static_cast<std::uint16_t>(key);
        for (auto const number : widest) {
            slot->value = number;
            ASSERT_EQ("", renderedTooLong(shm::QelShmMVal(slot.get()))) << key << ' ' << number;
        }
    }
}

TEST(HostileRenderingTest, NumberOfFullWidth_FillsItsBufferToTheLastCharacter) {
    // 1 is a voltage, 256 a temperature: the display's text has one character more in front.
    EXPECT_EQ(31U, ValueFormatter::str(key::voltage, DBL_MAX, " ").size());
    EXPECT_EQ(32U, ValueFormatter::strForDisplay(key::temperature, -DBL_MAX, eStatus_On).size());
}

TEST(HostileRenderingTest, SeparatorOfAnyLengthAndContent_IsCutWithTheText) {
    for (std::size_t const size : {0U, 1U, 30U, 31U, 32U, 33U, 4096U}) {
        for (char const filler : {'x', '%', 'n', '\0', '\xC2'}) {
            std::string const separator(size, filler);
            for (unsigned short const key : std::initializer_list<unsigned short>{
                     key::voltage, key::powerFactor, key::temperature, key::humidity, 999}) {
                ASSERT_LE(ValueFormatter::str(key, -DBL_MAX, separator).size(), 31U);
                ASSERT_LE(ValueFormatter::str(key, 0.0, separator).size(), 31U);
                ASSERT_LE(ValueFormatter::format(key, separator).size(), size + 16);
            }
        }
    }
}

TEST(HostileRenderingTest, SeparatorOfConversions_IsTakenForText) {
    EXPECT_EQ("1.0%s%n%p%1000000d V", ValueFormatter::str(key::voltage, 1.0, "%s%n%p%1000000d "));
}

TEST(HostileRenderingTest, RandomValues_AreRendered) {
    auto random = randomNumbers(seed);
    auto const slot = wipedSlot<shm::record::QelShmMVal>();
    for (int round = 0, count = rounds(20000, 500000); round < count; ++round) {
        randomize(*slot, random);
        if (random() % 4 != 0) { // most numbers are no states, and few keys have names
            slot->state = static_cast<eStatus_Bits>(static_cast<int>(random() % 48) - 3);
            slot->key = static_cast<std::uint16_t>(random() % 0x214);
        }
        ASSERT_EQ("", renderedTooLong(shm::QelShmMVal(slot.get()))) << "round " << round;
    }
}

TEST(HostileRenderingTest, RandomPoints_AreRendered) {
    auto random = randomNumbers(seed);
    auto const slot = wipedSlot<shm::QelShmMP>();
    for (int round = 0, count = rounds(20000, 500000); round < count; ++round) {
        randomize(*slot, random);
        if (random() % 4 != 0) { // a known kind, half of the levels unused
            auto id = static_cast<std::uint64_t>(random() % 6) << 48U;
            for (unsigned int shift = 16; shift < 48; shift += 8) {
                id |= std::uint64_t{random() % 2 == 0 ? 0xFFU : random() & 0xFFU} << shift;
            }
            slot->guid = static_cast<std::int64_t>(id);
        }
        ASSERT_EQ("", renderedTooLong(shm::QelShmMPnt(slot.get()))) << "round " << round;
    }
}

TEST(HostileRenderingTest, EveryTypeOfEveryKindAndLevel_HasAText) {
    auto const slot = wipedSlot<shm::QelShmMP>();
    shm::QelShmMPnt const point(slot.get());
    for (std::uint64_t kind = 0; kind <= 0xFF; ++kind) {
        for (std::uint64_t levels = 0; levels < 16; ++levels) { // which of the four levels are unused
            std::uint64_t id = kind << 48U;
            for (unsigned int level = 0; level < 4; ++level) {
                id |= (levels >> level & 1U) != 0 ? std::uint64_t{0xFF} << (16 + 8 * level) : 0;
            }
            slot->guid = static_cast<std::int64_t>(id);
            for (unsigned int type = 0; type <= 0xFF; type += static_cast<unsigned>(rounds(17, 1))) {
                slot->type = static_cast<std::uint8_t>(type);
                auto const text = point.tstr();
                bool const hasTables = kind <= 2 || kind == 4;
                ASSERT_EQ(hasTables, !text.empty()) << kind << ' ' << type;
                ASSERT_EQ("", renderedTooLong(point));
            }
        }
    }
}

TEST(HostileRenderingTest, HexText_WithMoreDigitsThanANumberHas) {
    for (std::size_t const digits : {0U, 1U, 16U, 17U, 64U, 1000U}) {
        EXPECT_EQ("0xffffffffffffffff", shm::hexText(0xFFFFFFFFFFFFFFFF, digits));
        EXPECT_EQ(2 + std::clamp<std::size_t>(digits, 1, 16), shm::hexText(0, digits).size());
    }
}

} // namespace

} // namespace qel::test
