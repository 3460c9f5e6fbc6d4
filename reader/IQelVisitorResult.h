// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a visit of the region collects.
#pragma once

#include "region/QelExport.h"

namespace shm {

/// Base class of the result object that a visit passes to every callback. It is empty: derive from it to collect what a
/// visitor finds.
///
/// Threads: thread-bound to the visiting thread.
class QEL_EXPORT IQelVisitorResult {
public:
    /// Has no state.
    IQelVisitorResult() = default;
    IQelVisitorResult(IQelVisitorResult const&) = delete;
    IQelVisitorResult& operator=(IQelVisitorResult const&) = delete;
    /// The last owner destroys the result through this.
    virtual ~IQelVisitorResult();
};

} // namespace shm
