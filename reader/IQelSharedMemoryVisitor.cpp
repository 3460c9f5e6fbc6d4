// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/IQelSharedMemoryVisitor.h"

namespace shm {

IQelSharedMemoryVisitor::~IQelSharedMemoryVisitor() = default;

} // namespace shm
