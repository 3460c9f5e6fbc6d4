// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmMPntCmp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <list>
#include <random>
#include <vector>

namespace {

using shm::QelShmMPntCmp;

/// The rules once more, on single bytes; bytes are counted from the lowest one.
std::int64_t modelKey(long long svid) {
    std::array<std::uint8_t, 8> bytes{};
    for (std::size_t byte = 0; byte < 8; ++byte) {
        bytes[byte] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(svid) >> (8 * byte));
    }
    if (bytes[6] == 1) {
        bytes[2] = 0;
        bytes[5] = 0;
    } else if (bytes[6] == 4) {
        bytes[0] = 4;
        bytes[1] = 0;
        bytes[6] = 0;
    }
    std::uint64_t key = 0;
    for (std::size_t byte = 8; byte-- > 0;) {
        key = key * 256 + bytes[byte];
    }
    return static_cast<std::int64_t>(key);
}

/// Random sensor ids in which types that matter, equal bytes and both signs are frequent.
class Svids {
public:
    long long next() {
        std::uint64_t svid = 0;
        for (int byte = 0; byte < 8; ++byte) {
            static constexpr std::array<std::uint8_t, 8> common{0x00, 0x01, 0x02, 0x04,
                                                                0x05, 0x7F, 0x80, 0xFF};
            auto const random = generator_();
            svid = svid * 256 +
                   (random % 4 != 0 ? common[(random >> 8U) % common.size()] : (random >> 8U) & 0xFFU);
        }
        return static_cast<long long>(svid);
    }

private:
    std::mt19937 generator_{20}; // NOLINT(cert-msc32-c,cert-msc51-cpp): the same ids in each run
};

shm::QelShmMP pointOf(long long svid) {
    shm::QelShmMP point{};
    point.guid = svid;
    return point;
}

TEST(QelShmMPntCmpTest, Key_RandomSvids_AgreesWithModel) {
    Svids svids;
    for (int i = 0; i < 200000; ++i) {
        auto const svid = svids.next();
        ASSERT_EQ(QelShmMPntCmp::key(svid), modelKey(svid)) << std::hex << svid;
    }
}

TEST(QelShmMPntCmpTest, Key_EverySensorType_AgreesWithModel) {
    for (unsigned int type = 0; type < 256; ++type) {
        auto const svid = static_cast<long long>(0xA5001234567889ABULL | (std::uint64_t{type} << 48U));
        EXPECT_EQ(QelShmMPntCmp::key(svid), modelKey(svid)) << type;
    }
}

TEST(QelShmMPntCmpTest, Key_I2CSensor_LosesBytesTwoAndFive) {
    EXPECT_EQ(QelShmMPntCmp::key(0x0101A1B2C3D4E5F6), 0x010100B2C300E5F6);
}

TEST(QelShmMPntCmpTest, Key_ResidualCurrentMonitor_GetsLowHalfWordFourAndNoType) {
    EXPECT_EQ(QelShmMPntCmp::key(0x0104A1B2C3D4E5F6), 0x0100A1B2C3D40004);
}

TEST(QelShmMPntCmpTest, Key_AnyOtherType_IsTheSvid) {
    EXPECT_EQ(QelShmMPntCmp::key(0x0100A1B2C3D4E5F6), 0x0100A1B2C3D4E5F6);
    EXPECT_EQ(QelShmMPntCmp::key(0x0102A1B2C3D4E5F6), 0x0102A1B2C3D4E5F6);
    EXPECT_EQ(QelShmMPntCmp::key(-1), -1);
}

TEST(QelShmMPntCmpTest, Order_IsThatOfSignedKeys) {
    auto const smallest = pointOf(std::numeric_limits<long long>::min());
    auto const negative = pointOf(-1);
    auto const zero = pointOf(0);
    auto const largest = pointOf(std::numeric_limits<long long>::max());
    std::vector<shm::QelShmMPnt> const ascending{shm::QelShmMPnt(&smallest), shm::QelShmMPnt(&negative),
                                                 shm::QelShmMPnt(&zero), shm::QelShmMPnt(&largest)};
    QelShmMPntCmp const sut;
    for (std::size_t left = 0; left < ascending.size(); ++left) {
        for (std::size_t right = 0; right < ascending.size(); ++right) {
            EXPECT_EQ(sut(ascending[left], ascending[right]), left < right);
        }
    }
}

TEST(QelShmMPntCmpTest, Sort_RandomPoints_IsStableAndAgreesWithModel) {
    Svids svids;
    for (int round = 0; round < 200; ++round) {
        std::vector<shm::QelShmMP> points;
        for (std::uint32_t pos = 0; pos < 100; ++pos) {
            points.push_back(pointOf(svids.next()));
        }
        std::list<shm::QelShmMPnt> sorted;
        std::vector<shm::QelShmMP const*> expected;
        for (auto const& point : points) {
            sorted.emplace_back(&point);
            expected.push_back(&point);
        }
        sorted.sort(QelShmMPntCmp());
        std::stable_sort(expected.begin(), expected.end(), [](auto const* left, auto const* right) {
            return modelKey(left->guid) < modelKey(right->guid);
        });
        std::vector<shm::QelShmMP const*> order;
        for (auto const& handle : sorted) {
            order.push_back(&*handle);
        }
        ASSERT_EQ(order, expected);
    }
}

TEST(QelShmMPntCmpTest, Sort_I2CSensorsThatDifferInByteTwoOnly_KeepTheirOrder) {
    auto const larger = pointOf(0x01010102035A0000 | 0x00FF0000);
    auto const smaller = pointOf(0x01010102035A0000 & ~0x00FF0000LL);
    std::list<shm::QelShmMPnt> points{shm::QelShmMPnt(&larger), shm::QelShmMPnt(&smaller)};
    points.sort(QelShmMPntCmp());
    EXPECT_EQ(&*points.front(), &larger);
    points.reverse();
    points.sort(QelShmMPntCmp());
    EXPECT_EQ(&*points.front(), &smaller);
}

} // namespace
