// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a field holds or should hold.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <string>
#include <variant>

namespace qel::inspect {

/// A number out of the region with the way in which it is written, or words where no one number is meant. Small, and
/// made without allocating. Threads: const operations from any thread.
class FieldValue {
public:
    /// Nothing for words.
    using Number = std::variant<std::monostate, std::int64_t, std::uint64_t, double>;

    /// "17", "none" for NO_POSITION.
    static FieldValue position(std::uint32_t pos);
    /// "0x0100ffffffff0000".
    static FieldValue svid(std::int64_t svid);
    /// "High Alarm (1)".
    static FieldValue state(eStatus_Bits state);
    /// "0x20".
    static FieldValue byte(std::uint8_t byte);
    /// "0x0013".
    static FieldValue key(std::uint16_t key);
    /// "320032".
    static FieldValue count(std::uint64_t count);
    /// "230.1", as many digits as tell it from every other double; "nan", "-inf".
    static FieldValue number(double number);
    /// "nobody (65534)", "65534" for a user without a name.
    static FieldValue user(std::uint32_t uid);
    /// Permission bits as "rw-r--r--".
    static FieldValue mode(std::uint32_t mode);
    /// @param words kept by address; must live as long as the process
    static FieldValue words(char const* words);

    Number const& number() const { return number_; }

    /// Ready to be printed, without a line end.
    std::string text() const;

private:
    enum class Notation : std::uint8_t { Position, Svid, State, Byte, Key, Decimal, User, Mode, Words };

    FieldValue(Number number, Notation notation) : number_(number), notation_(notation) {}

    Number number_;
    Notation notation_;
    char const* words_ = "";
};

} // namespace qel::inspect
