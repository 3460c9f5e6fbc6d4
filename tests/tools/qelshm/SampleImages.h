// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Images of regions that tools are tried on.
#pragma once

#include "inspect/image/Image.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace qel::test {

/// Time of every delivery that is not recorded: 2023-11-14T22:13:20Z.
constexpr std::uint64_t sampleTime = 1700000000000;

/// Points of the unit that most samples hold.
namespace sample {
constexpr long long unit = 0x0100FFFFFFFF0000;
constexpr long long inlet = 0x010001FFFFFF0000;
constexpr long long circuit = 0x010001FF01FF0000;
constexpr long long socket1 = 0x010001FF01010000;
constexpr long long socket2 = 0x010001FF01020000;
constexpr long long socket3 = 0x010001FF01030000;
constexpr long long sensor = 0x01010101FFFF0000;
constexpr long long group = 0x0102FFFFFF010000;
} // namespace sample

struct SampleImage {
    char const* name;
    char const* content; ///< in words
    inspect::Image (*build)();
    bool isActive;
    bool isSound;     ///< whether its tree can be walked without finding fault
    bool isUndamaged; ///< whether everything is as a writer leaves it
    bool isOn;        ///< whether its global state is "On", by its values
};

std::ostream& operator<<(std::ostream& out, SampleImage const& sample);

/// All of them; the sound ones are made by the library's writer, with fixed times. Building one creates the live
/// object and removes it again.
std::vector<SampleImage> const& sampleImages();

/// One of them by its name.
inspect::Image sampleImage(std::string const& name);

} // namespace qel::test
