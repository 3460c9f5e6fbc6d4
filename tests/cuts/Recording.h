// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One operation on one tree, as the region went through it.
#pragma once

#include "tests/cuts/Operations.h"
#include "tests/cuts/Past.h"
#include "tests/cuts/StoreLog.h"
#include "tests/cuts/WriterBench.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qel::test {

/// Lets the writer lay the tree out and carry the operation out, notes its stores and looks at the region after each call.
class Recording {
public:
    /// @param prepared called when the tree is laid out, before the operation
    Recording(WriterBench& bench, Tree const& tree, Operation const& operation,
              std::function<void(Picture const&)> const& prepared);

    Stores const& stores() const { return stores_; }
    Past const& past() const { return past_; }

    /// Are the bytes of the region, before and after, explained by the noted stores?
    bool isComplete() const { return isComplete_; }

    /// Stores in another order, or others, with what they replace in this region.
    Stores fitted(Stores stores) const;

    /// Puts the region back to before the operation, or behind it.
    void rewind() const;
    void finish() const;

private:
    Past run(WriterBench& bench, Tree const& tree, Operation const& operation,
             std::function<void(Picture const&)> const& prepared);

    std::uint8_t* bytes_;
    Stores stores_;
    bool isComplete_ = false;
    std::vector<std::uint8_t> first_;
    std::vector<std::uint8_t> last_;
    Past past_;
};

} // namespace qel::test
