// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The kinds of pictures that cannot be excluded.
#pragma once

#include "tests/cuts/Past.h"
#include "tests/cuts/Picture.h"

#include <cstddef>
#include <iosfwd>
#include <map>
#include <set>
#include <string>

namespace qel::test {

/// Collects what was seen of a region that the writer was changing and what no picture of the resting writer shows,
/// by kinds, each with the first example.
///
/// A thing counts as old when something else in the same picture is newer than any moment at which that thing was so.
class Catalogue {
public:
    /// Notes the kinds of what is odd in a picture.
    /// @param when   what was done, for the example
    void note(Past const& past, Picture const& seen, std::string const& when);

    /// Notes one kind directly.
    void note(std::string const& kind, std::string const& what, std::string const& when);

    std::set<std::string> kinds() const;

    /// One line per kind: how often, and the first example.
    void print(std::ostream& out) const;

private:
    struct Entry {
        std::size_t count = 0;
        std::string example;
    };
    class Comparison;

    std::map<std::string, Entry> entries_;
};

/// The kinds in the tables of the layout page under "What a reader may meet" and "What a reader that pauses may meet":
/// the identifiers in the first column.
struct DocumentedKinds {
    std::set<std::string> all;
    std::set<std::string> notShownHere; ///< those that the page says this test does not show

    std::set<std::string> shownHere() const;
};
DocumentedKinds documentedKinds();

} // namespace qel::test
