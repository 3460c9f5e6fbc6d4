// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values as JSON; docs/reference/qelshm-schema.json describes every document. All functions are reentrant.
#pragma once

#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/verbs/PointFacts.h"

#include "inspect/check/Finding.h"

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

/// Keeps its members in the order in which they were added.
using Json = nlohmann::ordered_json;

/// Starts the document of a verb.
Json jsonDocument(std::string const& verb);

/// Starts the document of a verb that reads one region: origin, condition and the reference time of ages.
/// @param warnings as printed on standard error
Json jsonDocument(std::string const& verb, RegionInput const& input,
                  std::vector<std::string> const& warnings);

/// Describes the origin of an image.
Json jsonSource(RegionInput const& input);

/// Describes a time without an age.
/// @param time ms since 1970 UTC
Json jsonTime(std::uint64_t time);

Json jsonState(eStatus_Bits state);

/// @return the text; null for an empty one
Json textOrNull(std::string_view text);

/// Describes a time and its age; null for never.
/// @param at  ms since 1970 UTC
/// @param now ms since 1970 UTC
Json jsonMoment(std::uint64_t at, std::uint64_t now);

Json jsonPoint(PointFacts const& point, std::uint64_t now);
Json jsonValue(ValueFacts const& value, std::uint64_t now);
Json jsonValues(std::vector<ValueFacts> const& values, std::uint64_t now);

Json jsonFindings(inspect::Findings const& findings);

/// Writes a document indented, in ASCII, with a line end.
/// @throws OutputError
void printJson(std::ostream& out, Json const& document);

/// Prints a document whose last member is a list that is too long for the memory, item by item.
///
/// Threads: reentrant.
class JsonListWriter {
public:
    /// Prints the document up to the list.
    /// @throws std::runtime_error when it cannot be written, as add() and end()
    JsonListWriter(std::ostream& out, Json document, std::string const& list);

    void add(Json const& item);
    void end();

private:
    std::ostream& out_;
    std::string rest_; ///< behind the list
    bool isEmpty_ = true;
};

} // namespace qel::tools
