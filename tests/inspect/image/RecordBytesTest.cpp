// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/RecordBytes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>

namespace qel::inspect {

TEST(RecordBytesTest, HasSameBits_ComparesTheBytes) {
    auto const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(hasSameBits(nan, nan));
    EXPECT_TRUE(hasSameBits(1.5, 1.5));
    EXPECT_FALSE(hasSameBits(0.0, -0.0));
    EXPECT_FALSE(hasSameBits(1.5, 1.6));
    EXPECT_FALSE(hasSameBits(1, 2));
}

TEST(RecordBytesTest, IsUnused_OnlyIfEveryByteIsThatOfAWipedRegion) {
    shm::record::QelShmMVal slot{};
    auto* const bytes = reinterpret_cast<unsigned char*>(&slot);
    std::fill(bytes, bytes + sizeof slot, std::uint8_t{0xFF});
    EXPECT_TRUE(isUnused(slot));
    for (std::size_t at = 0; at < sizeof slot; ++at) {
        bytes[at] = 0xFE;
        EXPECT_FALSE(isUnused(slot)) << "byte " << at;
        bytes[at] = 0xFF;
    }
}

} // namespace qel::inspect
