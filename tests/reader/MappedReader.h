// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A reader that has its region without a hardware manager.
#pragma once

#include "reader/QelSharedMemoryReader.h"

namespace qel::test {

/// Maps whatever object there is at once, which raises the modification counter by 1. Asks nobody.
class MappedReader : public shm::QelSharedMemoryReader {
public:
    MappedReader() : QelSharedMemoryReader(0, false) { QelSharedMemoryReader::onInitialized(); }
};

} // namespace qel::test
