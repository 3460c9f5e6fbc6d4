// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value that a client reads again and again.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

namespace shm {

/// Names a value by its sensor id and remembers where QelSharedMemoryReader::mval() found it last, so that
/// reading it again costs a few nanoseconds. It owns nothing and is copied freely. It may be used with another reader, also
/// when the former one is gone: the value is looked up anew then, since what is remembered of one reader is never taken
/// for what another one found.
///
/// Threads: like a plain variable; each thread keeps its own.
class QEL_EXPORT QelShmKeptMVal {
public:
    /// @param svid of the value: its point's sensor id with the value's key in the low 16 bits
    explicit QelShmKeptMVal(long long svid) : svid_(svid) {}

    long long svid() const { return svid_; }

private:
    friend class QelSharedMemoryReader;

    long long svid_;
    record::Region const* region_ = nullptr; // that it was found in; null while it is not found
    QelShmMP const* point_ = nullptr;
    record::QelShmMVal const* value_ = nullptr;
    unsigned int rebuild_ = 0; // number of the index that it was found by
};

} // namespace shm
