// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value that a client reads repeatedly.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

namespace shm {

/// Names a value by its sensor id and remembers where QelSharedMemoryReader::mval() found it last, so reading it
/// again costs a few nanoseconds. It owns nothing and may be copied freely. It may be used with another reader,
/// also after the first one was destroyed: the new reader does not use what is remembered of the first one, and
/// looks the value up.
///
/// Threads: reentrant. Give each thread an object of its own.
class QEL_EXPORT QelShmKeptMVal {
public:
    /// @param svid sensor id of the value: that of its point, with the value's key in the low 16 bits
    explicit QelShmKeptMVal(long long svid) : svid_(svid) {}

    /// @return sensor id of the value
    long long svid() const { return svid_; }

private:
    friend class QelSharedMemoryReader;

    long long svid_;
    // Where the value was found last; region_ is null if it was not found.
    record::Region const* region_ = nullptr;
    QelShmMP const* point_ = nullptr;
    record::QelShmMVal const* value_ = nullptr;
    unsigned int rebuild_ = 0; // number of the reader's index at that time
};

} // namespace shm
