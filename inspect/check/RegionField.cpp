// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/RegionField.h"

#include "format/HexText.h"
#include "format/StateName.h"
#include "inspect/image/LiveRegion.h"

#include <array>
#include <charconv>
#include <type_traits>

namespace qel::inspect {

namespace {

constexpr auto decimalText = [](auto number) -> std::string {
    if constexpr (std::is_same_v<decltype(number), std::monostate>) {
        return {};
    } else {
        std::array<char, 32> text{}; // enough for every double in the shortest form that keeps it
        auto const written = std::to_chars(text.data(), text.data() + text.size(), number);
        return {text.data(), written.ptr};
    }
};

} // namespace

FieldValue FieldValue::position(std::uint32_t pos) {
    return {std::uint64_t{pos}, Notation::Position};
}

FieldValue FieldValue::svid(std::int64_t svid) {
    return {svid, Notation::Svid};
}

FieldValue FieldValue::state(eStatus_Bits state) {
    return {std::int64_t{state}, Notation::State};
}

FieldValue FieldValue::byte(std::uint8_t byte) {
    return {std::uint64_t{byte}, Notation::Byte};
}

FieldValue FieldValue::key(std::uint16_t key) {
    return {std::uint64_t{key}, Notation::Key};
}

FieldValue FieldValue::count(std::uint64_t count) {
    return {count, Notation::Decimal};
}

FieldValue FieldValue::number(double number) {
    return {number, Notation::Decimal};
}

FieldValue FieldValue::user(std::uint32_t uid) {
    return {std::uint64_t{uid}, Notation::User};
}

FieldValue FieldValue::mode(std::uint32_t mode) {
    return {std::uint64_t{mode}, Notation::Mode};
}

FieldValue FieldValue::words(char const* words) {
    FieldValue value(std::monostate(), Notation::Words);
    value.words_ = words;
    return value;
}

std::string FieldValue::text() const {
    switch (notation_) {
    case Notation::Position:
        return number_ == Number(std::uint64_t{shm::NO_POSITION})
                   ? "none"
                   : "slot " + std::visit(decimalText, number_);
    case Notation::Svid:
        return shm::svidText(std::get<std::int64_t>(number_));
    case Notation::State: {
        auto const number = std::get<std::int64_t>(number_);
        return std::string(shm::stateName(static_cast<eStatus_Bits>(number))) + " (" +
               std::to_string(number) + ')';
    }
    case Notation::Byte:
        return shm::hexText(std::get<std::uint64_t>(number_), 2);
    case Notation::Key:
        return shm::hexText(std::get<std::uint64_t>(number_), 4);
    case Notation::Decimal:
        return std::visit(decimalText, number_);
    case Notation::User: {
        auto const number = static_cast<uid_t>(std::get<std::uint64_t>(number_));
        auto const name = userName(number);
        auto const decimal = std::to_string(number);
        return name == decimal ? decimal : name + " (" + decimal + ')';
    }
    case Notation::Mode:
        return modeText(static_cast<mode_t>(std::get<std::uint64_t>(number_)));
    case Notation::Words:
        return words_;
    }
    return {};
}

} // namespace qel::inspect
