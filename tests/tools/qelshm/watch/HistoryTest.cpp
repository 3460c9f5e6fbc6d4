// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/History.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace qel::watch {

namespace {

void expectBucket(History const& history, std::uint64_t number, float min, float max, float last) {
    auto const bucket = history.at(number);
    EXPECT_FALSE(bucket.isEmpty()) << number;
    EXPECT_EQ(min, bucket.min) << number;
    EXPECT_EQ(max, bucket.max) << number;
    EXPECT_EQ(last, bucket.last) << number;
}

} // namespace

TEST(HistoryTest, NewOne_IsEmpty) {
    History const sut;
    for (auto const bucket : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{1000000}}) {
        EXPECT_TRUE(sut.at(bucket).isEmpty());
    }
}

TEST(HistoryTest, Bucket_KeepsLeastGreatestAndLast) {
    History sut;
    for (double const number : {5.0, 9.0, -1.0, 3.0}) {
        sut.add(7, number);
    }
    expectBucket(sut, 7, -1.0F, 9.0F, 3.0F);
    EXPECT_TRUE(sut.at(6).isEmpty());
    EXPECT_TRUE(sut.at(8).isEmpty());
}

TEST(HistoryTest, SkippedBuckets_AreEmptyAlsoWhenTheirPlacesWereUsed) {
    History sut;
    for (std::uint64_t bucket = 0; bucket < 2 * History::length; ++bucket) {
        sut.add(bucket, 1.0);
    }
    std::uint64_t const last = 2 * History::length - 1;
    sut.add(last + 5, 2.0);
    expectBucket(sut, last, 1.0F, 1.0F, 1.0F);
    for (std::uint64_t bucket = last + 1; bucket < last + 5; ++bucket) {
        EXPECT_TRUE(sut.at(bucket).isEmpty()) << bucket;
    }
    expectBucket(sut, last + 5, 2.0F, 2.0F, 2.0F);
}

TEST(HistoryTest, OldBuckets_AreForgotten) {
    History sut;
    sut.add(100, 1.0);
    sut.add(100 + History::length - 1, 2.0);
    expectBucket(sut, 100, 1.0F, 1.0F, 1.0F);
    sut.add(100 + History::length, 3.0);
    EXPECT_TRUE(sut.at(100).isEmpty());
    sut.add(std::numeric_limits<std::uint64_t>::max(), 4.0);
    EXPECT_TRUE(sut.at(100 + History::length).isEmpty());
    expectBucket(sut, std::numeric_limits<std::uint64_t>::max(), 4.0F, 4.0F, 4.0F);
}

TEST(HistoryTest, NumbersThatAreNoFloat_AreLeftOut) {
    History sut;
    for (double const number : {std::nan(""), std::numeric_limits<double>::infinity(), -1e300, 1e39}) {
        sut.add(3, number);
    }
    EXPECT_TRUE(sut.at(3).isEmpty());
}

} // namespace qel::watch
