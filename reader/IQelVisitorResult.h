// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a visit of the region gathers.
#pragma once

#include "region/QelExport.h"

namespace shm {

/// Base of the result objects that a visit hands to every callback; empty, so that a visitor can derive one
/// of its own and collect its findings there.
class QEL_EXPORT IQelVisitorResult {
public:
    IQelVisitorResult() = default;
    IQelVisitorResult(IQelVisitorResult const&) = delete;
    IQelVisitorResult& operator=(IQelVisitorResult const&) = delete;
    virtual ~IQelVisitorResult();
};

} // namespace shm
