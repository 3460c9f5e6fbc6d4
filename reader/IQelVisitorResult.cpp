// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/IQelVisitorResult.h"

namespace shm {

IQelVisitorResult::~IQelVisitorResult() = default;

} // namespace shm
