// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What tests need to call a writer as they call the reference writer, and to compare the two.
#pragma once

#include "domain/MeasureValue.h"
#include "domain/eStatus_Bits.h"
#include "region/Exceptions.h"

#include "tests/model/RandomSensors.h"
#include "tests/model/ReferenceWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

namespace qel::test {

/// A structure as the map of definitions that a writer takes.
template <typename Definitions>
Definitions definitionsOf(ReferenceWriter::Structure const& structure) {
    constexpr unsigned int ignored = 12345;
    Definitions definitions;
    for (auto const& [svid, keys] : structure) {
        auto& definition = definitions[svid];
        for (auto const key : keys) {
            definition.mvs.emplace(key, ignored);
        }
    }
    return definitions;
}

/// How a change of the structure ended that gives true or false or throws.
template <typename Change>
ReferenceWriter::Outcome outcomeOf(Change const& change) {
    try {
        return change() ? ReferenceWriter::Outcome::Changed : ReferenceWriter::Outcome::Nothing;
    } catch (ex::InvalidSensorIdException const&) {
        return ReferenceWriter::Outcome::Thrown;
    }
}

/// Hands a structure to a writer, as the kind of definitions that it takes.
template <typename Writer, typename Owner, typename Definitions>
ReferenceWriter::Outcome addTo(Writer& writer, bool (Owner::*addStructure)(Definitions const&),
                               ReferenceWriter::Structure const& structure) {
    return outcomeOf([&] { return (writer.*addStructure)(definitionsOf<Definitions>(structure)); });
}
template <typename Writer>
ReferenceWriter::Outcome addTo(Writer& writer, ReferenceWriter::Structure const& structure) {
    return addTo(writer, &Writer::addStructure, structure);
}

inline std::unique_ptr<measval::MeasureValue> valueOf(RandomSensors::Update const& update) {
    auto const state = static_cast<eStatus_Bits>(update.state);
    return update.number ? std::make_unique<measval::MeasureValue>(*update.number, update.at, state)
                         : std::make_unique<measval::MeasureValue>("text", update.at, state);
}

/// Whether a region holds the bytes of the reference; tells the first one that differs.
inline testing::AssertionResult holdsBytesOf(ReferenceWriter const& reference, std::uint8_t const* region) {
    auto const& expected = reference.image();
    if (std::memcmp(expected.data(), region, expected.size()) == 0) {
        return testing::AssertionSuccess();
    }
    auto const differing = std::mismatch(expected.begin(), expected.end(), region);
    return testing::AssertionFailure() << "byte " << differing.first - expected.begin() << " is "
                                       << int{*differing.second} << ", expected " << int{*differing.first};
}

} // namespace qel::test
