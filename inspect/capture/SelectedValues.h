// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Some values of a region that changes.
#pragma once

#include "inspect/capture/FrameRegion.h"
#include "inspect/naming/ValuePattern.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qel::inspect {

/// There are more values than can be followed; what() is one line for the user.
class TooManyValuesError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Follows the values that patterns select through the samples of a capture, while points come and go.
///
/// Threads: reentrant.
class SelectedValues {
public:
    /// How many different values a capture may have. A region has 8800 at a time.
    static constexpr std::size_t most = 20000;

    /// A value.
    struct Name {
        long long point;
        unsigned short key;
    };

    /// @param patterns without any, all values
    explicit SelectedValues(ValuePatterns patterns) : patterns_(std::move(patterns)) {}

    /// Takes the next sample.
    /// @param region must live until the next call
    /// @throws TooManyValuesError
    void follow(FrameRegion const& region);

    /// The values that were there in any sample: in the order of the tree, later ones behind.
    std::vector<Name> const& names() const { return names_; }

    /// A value in the newest sample.
    /// @param index into names()
    /// @return null if it is not there, or the region is not active
    shm::record::QelShmMVal const* value(std::size_t index) const;

private:
    using Id = std::pair<long long, unsigned short>;

    void locate(FrameRegion const& region);
    bool isSelected(Id const& id);
    std::size_t indexOf(Id const& id);

    ValuePatterns patterns_;
    std::map<Id, bool> isSelected_; ///< as far as known
    std::vector<Name> names_;
    std::map<Id, std::size_t> indexOf_;
    std::vector<std::uint32_t> slots_; ///< by index; NO_POSITION if the value is not there
    shm::record::Region const* records_ = nullptr;
    bool isLocated_ = false;
};

/// The number of a value that was delivered.
/// @param value null for a value that is not there
/// @return none if nothing was delivered, and for infinity and NaN
std::optional<double> deliveredNumber(shm::record::QelShmMVal const* value);

} // namespace qel::inspect
