// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the tests of recordings share.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/Image.h"

#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
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

/// A directory of its own.
class RecordingTest : public testing::Test {
protected:
    RecordingTest() : directory_("/tmp/qel-recording-XXXXXX") {
        if (::mkdtemp(directory_.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
    }
    ~RecordingTest() override { std::filesystem::remove_all(directory_); }

    std::string path(std::string const& name = "recording") const { return directory_ + '/' + name; }

    static std::string content(std::string const& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void fill(std::string const& path, std::string const& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    /// What the failure says, "(none)" when there is none.
    template <typename Action>
    static std::string problemOf(Action const& action) {
        try {
            action();
        } catch (inspect::RecordingError const& error) {
            return error.what();
        }
        return "(none)";
    }

private:
    std::string directory_;
};

} // namespace qel::test
