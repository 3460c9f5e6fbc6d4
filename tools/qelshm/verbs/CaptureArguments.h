// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments of the verbs that read a whole capture.
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include "inspect/capture/CaptureTimeline.h"
#include "inspect/capture/SelectedValues.h"
#include "inspect/naming/ValuePattern.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::tools {

/// A part of a capture. Reentrant.
struct CaptureRange {
    std::uint64_t from;  ///< ms since 1970 UTC
    std::uint64_t until; ///< ms since 1970 UTC, not before from
};

/// FILE [NAME...] --from TIME --to TIME.
///
/// Threads: reentrant.
class CaptureArguments {
public:
    /// @param names what the help says of NAME
    void define(CLI::App& verb, OptionalOptions const& optional, std::string const& names,
                bool isNameRequired);

    /// Reads the capture's times. A damaged end is told.
    /// @throws inspect::CaptureError
    /// @throws CaptureTimeError if it is in a pipe
    inspect::CaptureTimeline timeline(CommandContext const& context) const;

    /// What the capture has of the part that was asked for.
    /// @throws CaptureTimeError if it has nothing of it, or --to is before --from
    CaptureRange range(inspect::CaptureTimeline const& timeline) const;

    /// @param output a file that the verb is to write
    /// @throws inspect::ImageFileError if that is the capture, which would be lost
    void requireOther(std::string const& output) const;

    inspect::ValuePatterns patterns() const;

    /// Says that a name selects nothing in the range: "there is no value "unit1:voltage" in this part of night.rec".
    /// @param index of the name
    /// @param kind  what there is none of: "value"
    std::string nothingText(std::size_t index, char const* kind) const;

    /// The values in the range that the names select.
    /// @throws inspect::NotFoundError if a name selects none
    std::vector<inspect::SelectedValues::Name> values(inspect::CaptureTimeline const& timeline,
                                                      CaptureRange const& range) const;

private:
    std::string file_;
    std::vector<std::string> names_;
    std::string from_;
    std::string until_;
};

} // namespace qel::tools
