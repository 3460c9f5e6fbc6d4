// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A small unit with every kind of point, as the writer lays it out.
#pragma once

#include "region/QelShmRecords.h"

#include <memory>

namespace qel::test {

/// The region of an active unit with propagated states, made by a writer; no object is left behind.
///
/// | slots | points                                   | values                        | list                     |
/// |-------|------------------------------------------|-------------------------------|--------------------------|
/// | 0     | unit 1                                   | 0 to 2: keys 1, 4, 19         | devices: 0, 17, 19       |
/// | 1, 10 | inlets 1 and 2                           |                               | of 0: 1, 10, 16, 11, 12  |
/// | 2     | circuit 1                                | 3, 4: keys 1, 4               | of 1: 7, 8, 9, 2         |
/// | 3 to 6| sockets 1 to 4                           | 5 to 16: keys 1, 4, 19 each   | of 2: 3, 4, 5, 6         |
/// | 7 to 9| phases 1 to 3                            | 17 to 19: key 1               | of 1                     |
/// | 11, 12| I2C sensors 1/1 and 1/2                  | 20 to 23: keys 40, 41 each    | of 0                     |
/// | 13-15 | groups 1 to 3                            | 24: key 19                    | groups: 13, 14, 15       |
/// | 16    | residual-current monitor                 | 25: key 5                     | of 0                     |
/// | 17, 18| unit 2 and its inlet                     | 26: key 1                     | devices; of 17           |
/// | 19    | unit 3                                   |                               | devices                  |
/// | 20    | freed: was socket 5, its prev is 6 still | 27, freed: key 1              | none                     |
std::unique_ptr<shm::record::Region> sampleUnit();

} // namespace qel::test
