// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writer's rules once more, in the plainest form: a byte image of the region that each operation changes
/// step by step. Shares nothing with the library; made to be read in one sitting and held against the real
/// region.
#pragma once

#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <set>
#include <vector>

namespace qel::test {

class PlainModel {
public:
    using Keys = std::set<std::uint16_t>;

    /// Parents before children: an unused level (0xFF) sorts before every used one.
    struct Order {
        bool operator()(std::int64_t left, std::int64_t right) const;
    };
    using Structure = std::map<std::int64_t, Keys, Order>;

    enum class Outcome { Nothing, Changed, Thrown };

    /// A wiped region and full free lists.
    PlainModel();

    void setActive();
    Outcome addStructure(Structure const& structure);
    std::uint32_t addMP(std::int64_t svid, Keys const& keys, std::uint32_t parent);
    bool removeStructure(Structure const& structure);
    Outcome modifyStructure(std::set<std::int64_t> const& svids);
    std::set<std::int64_t> injectTypes(std::map<std::int64_t, int> const& codes);
    bool updateMV(std::int64_t svid, bool isNumber, double number, std::uint64_t at, std::int32_t state);
    void propagateStates();

    std::vector<std::uint8_t> const& image() const { return image_; }
    std::deque<std::uint32_t> const& freePoints() const { return freePoints_; }
    std::deque<std::uint32_t> const& freeValues() const { return freeValues_; }

    struct Known {
        std::uint32_t pos;
        std::map<std::uint16_t, std::uint32_t> values;
    };
    std::map<std::int64_t, Known, Order> const& known() const { return known_; }

private:
    template <typename Number>
    Number get(std::size_t offset) const {
        Number number;
        std::memcpy(&number, &image_[offset], sizeof number);
        return number;
    }
    template <typename Number>
    void put(std::size_t offset, Number number) {
        std::memcpy(&image_[offset], &number, sizeof number);
    }

    bool findParent(std::int64_t svid, std::uint32_t& parent) const;
    void addValues(Known& target, Keys const& keys);
    void link(std::uint32_t pos);
    void setHead(std::int64_t svid, std::uint32_t pos);
    void unlink(std::uint32_t pos);
    void fold(std::uint32_t pos, std::vector<std::int32_t>& reported);

    std::vector<std::uint8_t> image_;
    std::deque<std::uint32_t> freePoints_;
    std::deque<std::uint32_t> freeValues_;
    std::map<std::int64_t, Known, Order> known_;
};

} // namespace qel::test
