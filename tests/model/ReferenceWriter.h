// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writer's rules once more, in the plainest form: what every random test holds the writer against.
#pragma once

#include "tests/model/ReferenceStates.h"
#include "tests/model/ReferenceSvid.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <vector>

namespace qel::test {

/// A writer whose region is a vector of bytes. Each operation does what the real one does, one plain step after the
/// other, to the bytes at the offsets of the layout. Shares no code with the library; logs nothing and knows no LED.
///
/// Threads: reentrant.
class ReferenceWriter {
public:
    using Svid = reference::Svid;
    using State = reference::State;
    using Keys = std::set<std::uint16_t>;
    using Structure = std::map<Svid, Keys, reference::ParentsFirst>;

    /// How an operation ended. Thrown stands for ex::InvalidSensorIdException.
    enum class Outcome { Nothing, Changed, Thrown };

    /// Wipes the region; all slots are free, the lowest one is taken first.
    ReferenceWriter();

    void setActive();
    Outcome addStructure(Structure const& structure);
    /// @return the position, rawNone when there is none
    std::uint32_t addMP(Svid svid, Keys const& keys, std::uint32_t parent);
    bool removeStructure(Structure const& structure);
    Outcome modifyStructure(std::set<Svid> const& svids);
    /// @return the svids whose points are known
    std::set<Svid> injectTypes(std::map<Svid, int> const& codes);
    /// @param number none for a value that is no number
    bool updateMV(Svid svid, std::optional<double> number, std::uint64_t at, State state);
    void propagateStates();

    std::vector<std::uint8_t> const& image() const { return image_; }

    // Positions, the next one to take first.
    std::deque<std::uint32_t> const& freePoints() const { return freePoints_; }
    std::deque<std::uint32_t> const& freeValues() const { return freeValues_; }

    struct Known {
        std::uint32_t pos = 0;
        std::map<std::uint16_t, std::uint32_t> values; ///< key to position
    };
    /// By point id.
    std::map<Svid, Known, reference::ParentsFirst> const& known() const { return known_; }

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
    std::uint32_t link(std::size_t offset) const { return get<std::uint32_t>(offset); }

    /// None when no candidate is known, rawNone in it for a top-level point.
    std::optional<std::uint32_t> parentPosition(Svid svid) const;
    void addValues(Known& target, Keys const& keys);
    void fillPoint(std::uint32_t pos, Svid id, std::uint32_t parent);
    void fillValue(std::uint32_t pos, std::uint16_t key);
    void enter(std::uint32_t pos);
    void takeOut(std::uint32_t pos);
    void setHead(Svid svid, std::uint32_t pos);
    void fold(std::uint32_t pos, reference::States& reported);

    std::vector<std::uint8_t> image_;
    std::deque<std::uint32_t> freePoints_;
    std::deque<std::uint32_t> freeValues_;
    std::map<Svid, Known, reference::ParentsFirst> known_;
};

} // namespace qel::test
