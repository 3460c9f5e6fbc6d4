// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A capture that verbs are tried on.
#pragma once

#include <cstdint>
#include <string>

namespace qel::test {

/// Time of the first sample: that of the sample images, 2023-11-14T22:13:20Z.
extern std::uint64_t const captureStart;

/// Writes "night.rec" into the working directory: the usual unit of SampleImages.h, a sample a second.
///
/// | seconds  | socket 2                                                                         |
/// |----------|----------------------------------------------------------------------------------|
/// | 0 to 9   | active power rises from 1000 W by 50 W a second                                  |
/// | 10 to 19 | low warning, 1500 W  to 1950 W                                                   |
/// | 20 to 29 | high alarm, 2000 W to 2450 W                                                     |
/// | 30 to 39 | 1000 W, no error                                                                 |
/// | 40 to 49 | no sample                                                                        |
/// | 50 to 54 | 1000 W                                                                           |
/// | 55, 56   | the region is wiped                                                              |
/// | 57 to 60 | nothing was delivered yet, and sensor 1.1 is not there                           |
/// @return the name
std::string sampleCapture();

} // namespace qel::test
