// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values as JSON; docs/reference/qelshm-schema.json describes every document.
#pragma once

#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/verbs/PointFacts.h"

#include "inspect/check/Finding.h"

#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>
#include <vector>

namespace qel::tools {

/// Keeps its members in the order in which they were added.
using Json = nlohmann::ordered_json;

/// How a document of a verb begins.
Json jsonDocument(std::string const& verb);

/// The same for a verb that looks at one region: where the image is from, its condition and the time that ages count
/// from. @param warnings as told on standard error
Json jsonDocument(std::string const& verb, RegionInput const& input,
                  std::vector<std::string> const& warnings);

/// Where an image is from.
Json jsonSource(RegionInput const& input);

Json jsonState(eStatus_Bits state);

/// The text, null for an empty one.
Json textOrNull(std::string const& text);

/// A time with its age; null for never.
Json jsonMoment(std::uint64_t at, std::uint64_t now);

Json jsonPoint(PointFacts const& point, std::uint64_t now);
Json jsonValue(ValueFacts const& value, std::uint64_t now);
Json jsonValues(std::vector<ValueFacts> const& values, std::uint64_t now);

Json jsonFindings(inspect::Findings const& findings);

/// Indented, ASCII alone, a line end behind it.
void printJson(std::ostream& out, Json const& document);

} // namespace qel::tools
