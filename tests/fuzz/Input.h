// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The bytes that a fuzzer hands over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qel::fuzz {

/// Reads from the front; where nothing is left it reads zeros, so that any input means something.
class Input {
public:
    Input(std::uint8_t const* data, std::size_t size) : data_(data), size_(size) {}

    bool isEmpty() const { return size_ == 0; }
    std::uint8_t const* rest() const { return data_; }
    std::size_t restSize() const { return size_; }

    std::uint8_t byte() {
        if (size_ == 0) {
            return 0;
        }
        --size_;
        return *data_++;
    }

    /// A number of so many bytes, lowest first.
    std::uint64_t number(unsigned int bytes) {
        std::uint64_t number = 0;
        for (unsigned int i = 0; i < bytes; ++i) {
            number |= static_cast<std::uint64_t>(byte()) << (8 * i);
        }
        return number;
    }

    /// A double by its eight bytes.
    double real() {
        auto const bits = number(sizeof(double));
        double real = 0;
        std::memcpy(&real, &bits, sizeof real);
        return real;
    }

private:
    std::uint8_t const* data_;
    std::size_t size_;
};

} // namespace qel::fuzz
