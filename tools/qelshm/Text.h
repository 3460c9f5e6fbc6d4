/// @file
/// Points and values as lines of text.
#pragma once

#include "tools/qelshm/Snapshot.h"

#include "region/QelShmRecords.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::tools {

/// Number of characters (not bytes) of a text in UTF-8.
std::size_t characterCount(std::string_view text);

/// The text, filled with blanks on the right to a number of characters.
std::string padded(std::string_view text, std::size_t width);

/// Number and unit of a value, "--" or "n/a" when it has none.
std::string numberText(shm::record::QelShmMVal const& value);

/// Id, position, type and state; the position indented by the depth.
std::string pointLine(PointView const& point);

/// Id, name, number, state and time of a value, indented.
std::string valueLine(PointView const& point, shm::record::QelShmMVal const& value);

/// Time, point, name, number and state of a value.
std::string changeLine(PointView const& point, shm::record::QelShmMVal const& value);

} // namespace qel::tools
