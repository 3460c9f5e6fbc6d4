// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value's slot as bytes, filled without the library's records.
#pragma once

#include "region/QelShmMVal.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

namespace qel::test {

/// Width of the slot and where its fields lie, written down here once more on purpose.
constexpr std::size_t rawValueSize = 32;
constexpr std::size_t valueOffset = 0;
constexpr std::size_t atOffset = 8;
constexpr std::size_t stateOffset = 16;
constexpr std::size_t keyOffset = 24;

/// Random numbers that are the same each time the tests run.
inline std::mt19937 repeatable(std::uint32_t seed) {
    return std::mt19937(seed);
}

/// The slot is the object's own; its handles must not outlive it.
class RawValue {
public:
    RawValue() { bytes_.fill(0xFF); }
    RawValue(std::uint16_t key, double value, std::int32_t state, std::uint64_t at = 0) : RawValue() {
        set(keyOffset, key);
        set(valueOffset, value);
        set(stateOffset, state);
        set(atOffset, at);
    }

    template <typename Number>
    void set(std::size_t offset, Number number) {
        std::memcpy(bytes_.data() + offset, &number, sizeof number);
    }

    template <typename Number>
    Number get(std::size_t offset) const {
        Number number;
        std::memcpy(&number, bytes_.data() + offset, sizeof number);
        return number;
    }

    void randomize(std::mt19937& random) {
        for (auto& byte : bytes_) {
            byte = static_cast<std::uint8_t>(random());
        }
    }

    /// The slot as it is now; the bytes do not follow later changes.
    shm::QelShmMVal handle() {
        static_assert(sizeof slot_ == rawValueSize);
        std::memcpy(&slot_, bytes_.data(), sizeof slot_);
        return shm::QelShmMVal(&slot_);
    }

private:
    std::array<std::uint8_t, rawValueSize> bytes_{};
    shm::record::QelShmMVal slot_{};
};

} // namespace qel::test
