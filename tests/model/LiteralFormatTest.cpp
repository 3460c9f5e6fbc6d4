// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The benchmarks' straightforward way does what it is measured for.

#include "bench/literal/Format.h"

#include "format/ValueFormatter.h"
#include "region/QelShmRecords.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

namespace qel::test {

TEST(LiteralFormatTest, EveryKey_IsWrittenAsByTheLibrary) {
    for (int key = 0; key <= 0xFFFF; ++key) {
        auto const shortKey = static_cast<unsigned short>(key);
        ASSERT_EQ(tav::ValueFormatter::str(shortKey, -1234.5678, " "),
                  bench::literal::str(shortKey, -1234.5678, " "))
            << key;
    }
}

TEST(LiteralFormatTest, EveryKindOfNumber_IsWrittenAsByTheLibrary) {
    for (double const number : {0.0, -0.0, 0.05, 0.25, 99.95, -12.35, 1e15, 1e22, 1e300, -1e300, 5e-324,
                                std::nan(""), HUGE_VAL, -HUGE_VAL}) {
        for (int const key : {1, 4, 16, 17, 257}) {
            for (auto const* const separator : {" ", "|", ""}) {
                auto const shortKey = static_cast<unsigned short>(key);
                EXPECT_EQ(tav::ValueFormatter::str(shortKey, number, separator),
                          bench::literal::str(shortKey, number, separator))
                    << key << ' ' << number;
            }
        }
    }
}

} // namespace qel::test
