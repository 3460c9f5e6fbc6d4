// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What no reader may ever meet.
#pragma once

#include "tests/cuts/Past.h"
#include "tests/cuts/Picture.h"

#include <cstdint>
#include <string>

namespace qel::test {

/// Holds what was seen against what the slots were: a point only under a sensor id that its slot had, a value only under
/// a point and a key that its slot had, with contents that were stored for it.
class Judge {
public:
    /// @param allowsHalves contents of 8 bytes may be put together of two that were stored
    Judge(Past const& past, bool allowsHalves) : past_(past), allowsHalves_(allowsHalves) {}

    /// What is wrong with it, "" when nothing is.
    std::string judge(Picture const& seen) const;
    std::string judge(SeenPoint const& seen) const;
    std::string judge(SeenValue const& seen) const;

    /// Is the content of this value one that was stored for it?
    bool hasStoredContent(SeenValue const& seen, Past::Value const& value) const;

private:
    Past const& past_;
    bool allowsHalves_;
};

} // namespace qel::test
