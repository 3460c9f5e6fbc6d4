// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Links between points, with the list that they belong to.
#pragma once

#include "inspect/check/RegionField.h"

#include "domain/SensorType.h"
#include "region/QelShmRecords.h"

#include <cstdint>
#include <optional>

namespace qel::inspect {

/// A list of siblings: one of the root's two, or a point's children.
struct SiblingList {
    std::uint32_t parent = shm::NO_POSITION;    ///< NO_POSITION for a list of the root
    std::optional<SensorType::SensorType> kind; ///< of all points in a list of the root
};

/// A field that leads to a point of a list: the list's head or a point's next.
struct PointLink {
    RegionField field;
    std::uint32_t pos = 0; ///< the slot that holds the field, 0 for the root
    std::uint32_t target = shm::NO_POSITION;

    bool isHead() const { return !(field == field::next); }

    /// The sibling before the target, NO_POSITION for the first point.
    std::uint32_t previous() const { return isHead() ? shm::NO_POSITION : pos; }

    /// The point that holds the field, NO_POSITION for the root.
    std::uint32_t point() const { return field.place == Place::Root ? shm::NO_POSITION : pos; }
};

} // namespace qel::inspect
