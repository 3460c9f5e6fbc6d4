// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The fixture of the tests of captures.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/Image.h"

#include "tests/inspect/FileTest.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace qel::test {

/// Images of random changes: from none to everything, at both ends, of sources of several lengths.
inline std::vector<inspect::Image> randomImages(std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<inspect::Image> images;
    std::vector<std::uint8_t> bytes(rawRegionSize, 0xFF);
    for (std::size_t index = 0; index < count; ++index) {
        std::size_t const changes = index % 7 == 6 ? 100000 : random() % 300;
        for (std::size_t change = 0; change < changes; ++change) {
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        }
        if (index % 5 == 0) {
            bytes.front() ^= 1U;
            bytes.back() ^= 1U;
        }
        std::size_t const size = index % 4 == 3 ? random() % rawRegionSize : rawRegionSize;
        images.emplace_back(bytes.data(), size);
    }
    return images;
}

/// Byte for byte; says where they differ.
inline void expectSame(inspect::Image const& expected, inspect::Image const& image) {
    EXPECT_EQ(expected.size(), image.size());
    auto const left = expected.bytes();
    auto const right = image.bytes();
    auto const same =
        std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first - left.begin();
    EXPECT_EQ(left.size(), static_cast<std::size_t>(same)) << "first difference at byte " << same;
}

using CaptureTest = FileTest<inspect::CaptureError>;

} // namespace qel::test
