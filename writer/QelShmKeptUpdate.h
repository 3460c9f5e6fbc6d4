// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value that the writing process stores repeatedly.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

#include <cstdint>

namespace shm {

/// Names a value by its sensor id and remembers where QelSharedMemoryWriter::updateMV() stored it last, so storing it
/// again costs a few nanoseconds. It owns nothing and may be copied freely. It may be made before its point is added,
/// and used with another writer, also after the first one was destroyed: what is remembered of a former structure or
/// of another writer is not used, and the value is looked up.
///
/// @code
/// shm::QelShmKeptUpdate power(socket1 | shm::key::activePower); // once
/// writer.updateMV(power, meters.power(), now, eStatus_NoError); // for each measurement
/// @endcode
///
/// Threads: reentrant. Give each thread an object of its own.
class QEL_EXPORT QelShmKeptUpdate {
public:
    /// @param svid sensor id of the value: that of its point, with the value's key in the low 16 bits
    explicit QelShmKeptUpdate(long long svid) : svid_(svid) {}

    /// @return sensor id of the value
    long long svid() const { return svid_; }

private:
    friend class QelSharedMemoryWriter;

    long long svid_;
    /// Of the writer's slots when the value was found last; 0 for never. The complement of it for a point's state, so
    /// that values need not ask whether they are one.
    std::uint64_t generation_ = 0;
    /// Of the number: the energy factor, or 1. A division costs less than a branch that the processor cannot predict,
    /// and takes the same time for each value.
    double divisor_ = 1;
    std::uint32_t offset_ = 0; // in the region, of the value's slot or the point's
};

} // namespace shm
