// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which bytes of the region a reader can come to read.
#pragma once

#include "tests/cuts/StoreLog.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::test {

/// Readers come to a slot by the root's lists, or by an index or a kept value from before the operation, and from there by
/// links; they scan nothing. So while some stores may or may not be visible, only those locations matter that can be
/// reached with some of the stores. This is computed generously: each link may hold each number that is on its way to it,
/// whatever the other links hold.
class Reach {
public:
    /// @param remembered positions of points that a reader may remember
    explicit Reach(std::vector<std::uint32_t> remembered) : remembered_(std::move(remembered)) {}

    /// @param region what is visible for certain
    /// @param late   stores that may be visible beside it
    void compute(std::uint8_t const* region, std::vector<Store const*> const& late);

    /// Can a reader's answer depend on this location? What it only remembers, it does not show.
    bool contains(std::uint32_t offset) const;

private:
    enum Mark : std::uint8_t { None, Remembered, Shown };

    void followPoint(std::uint32_t slot, Mark mark);
    void followValue(std::uint32_t slot);
    template <typename Follow>
    void followLink(std::size_t offset, Follow follow) const;

    std::vector<std::uint32_t> remembered_;
    std::vector<std::uint8_t> points_ = std::vector<std::uint8_t>(800);
    std::vector<std::uint8_t> values_ = std::vector<std::uint8_t>(8800);
    std::vector<std::uint32_t> marked_;       // slots of points_ that are not None
    std::vector<std::uint32_t> markedValues_; // the same for values_
    std::uint8_t const* region_ = nullptr;
    std::vector<Store const*> const* late_ = nullptr;
};

} // namespace qel::test
