// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value's slot as bytes, filled without the library's records.
#pragma once

#include "region/QelShmMVal.h"
#include "tests/support/RawRegion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

namespace qel::test {

/// Random numbers that are the same each time the tests run.
inline std::mt19937 repeatable(std::uint32_t seed) {
    return std::mt19937(seed);
}

/// The slot is the object's own; its handles must not outlive it.
class RawValue {
public:
    RawValue() { bytes_.fill(0xFF); }
    RawValue(std::uint16_t key, double value, std::int32_t state, std::uint64_t at = 0) : RawValue() {
        set(field::valueKey, key);
        set(field::number, value);
        set(field::valueState, state);
        set(field::valueAt, at);
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
        static_assert(sizeof slot_ == size);
        std::memcpy(&slot_, bytes_.data(), sizeof slot_);
        return shm::QelShmMVal(&slot_);
    }

private:
    static constexpr std::size_t size = rawValue(1) - rawValue(0);

    std::array<std::uint8_t, size> bytes_{};
    shm::record::QelShmMVal slot_{};
};

} // namespace qel::test
