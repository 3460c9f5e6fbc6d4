// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/IQelShmInitCallback.h"

#include <algorithm>

namespace shm {

namespace {

constexpr unsigned int pollsPerSecond = 4;

} // namespace

IQelShmInitCallback::IQelShmInitCallback(unsigned int seconds)
    : polls_(std::min(seconds, MAX_WAIT) * pollsPerSecond) {}

IQelShmInitCallback::~IQelShmInitCallback() = default;

} // namespace shm
