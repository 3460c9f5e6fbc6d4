// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Renders slots in every way there is.
#pragma once

#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"

#include <string>

namespace qel::test {

/// Runs every printer and formatter that takes such a slot.
/// @return the text that is longer than any can be, "" when none is
std::string renderedTooLong(shm::QelShmMPnt const& point);
std::string renderedTooLong(shm::QelShmMVal const& value);

} // namespace qel::test
