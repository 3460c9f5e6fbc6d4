// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Where the parts of a check put what they find.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/Image.h"

#include <cstdint>
#include <utility>

namespace qel::inspect {

/// Completes findings by what their field tells. Threads: not shared.
class FindingList {
public:
    void addToRoot(FindingCode code, RegionField const& field, FieldValue found, FieldValue expected) {
        add(code, field, 0, shm::NO_POSITION, found, expected);
    }

    void addToPoint(FindingCode code, RegionField const& field, std::uint32_t pos, FieldValue found,
                    FieldValue expected) {
        add(code, field, pos, pos, found, expected);
    }

    /// @param point the value's owner
    void addToValue(FindingCode code, RegionField const& field, std::uint32_t pos, std::uint32_t point,
                    FieldValue found, FieldValue expected) {
        add(code, field, pos, point, found, expected);
    }

    /// For a field of any place.
    void add(FindingCode code, RegionField const& field, std::uint32_t pos, std::uint32_t point,
             FieldValue found, FieldValue expected) {
        findings_.push_back({code, field, pos, point, found, expected, regionOffset(field, pos)});
    }

    /// Adds the first of some reserved bytes that was changed, if any.
    template <std::size_t count>
    void addChangedReserved(RegionField const& field, std::uint32_t pos, std::uint32_t point,
                            std::uint8_t const (&bytes)[count]) {
        for (std::size_t i = 0; i < count; ++i) {
            if (bytes[i] != shm::WIPE_BYTE) {
                add(FindingCode::ReservedChanged, field, pos, point, FieldValue::byte(bytes[i]),
                    FieldValue::byte(shm::WIPE_BYTE));
                findings_.back().offset += i;
                return;
            }
        }
    }

    /// Adds a state that is no number of eStatus_Bits.
    void addUnknownState(RegionField const& field, std::uint32_t pos, std::uint32_t point,
                         eStatus_Bits state) {
        if (state < eStatus_ExpectedValue || state > eStatus_SlaveVersionTooNew) {
            add(FindingCode::StateOutOfRange, field, pos, point, FieldValue::state(state),
                FieldValue::words("-2 to 43"));
        }
    }

    Findings const& findings() const { return findings_; }
    Findings take() { return std::move(findings_); }

private:
    Findings findings_;
};

} // namespace qel::inspect
