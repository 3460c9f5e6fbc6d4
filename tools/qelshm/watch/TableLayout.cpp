// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/TableLayout.h"

#include <algorithm>
#include <array>

namespace qel::watch {

namespace {

constexpr int leastName = 30;
constexpr int ageColumn = 7; // ">1234d!"
constexpr int rateColumn = 9;
constexpr int numberColumn = 13;
constexpr int leastWithType = 50;

int othersOf(TableLayout const& layout) {
    return layout.value + layout.state + layout.minimum + layout.maximum + layout.mean + layout.rate +
           layout.age;
}

} // namespace

TableLayout layoutOf(int columns, bool withStatistics) {
    TableLayout layout;
    layout.value = 14;
    layout.state = 18;
    layout.age = ageColumn;
    if (withStatistics) {
        layout.minimum = layout.maximum = layout.mean = numberColumn;
        layout.rate = rateColumn;
        layout.state = 12;
    }
    // In the order in which they go.
    for (auto* const column :
         std::array<int*, 5>{&layout.age, &layout.rate, &layout.mean, &layout.maximum, &layout.minimum}) {
        if (columns - othersOf(layout) >= leastName) {
            break;
        }
        *column = 0;
    }
    layout.isTypeShown = columns >= leastWithType;
    if (columns - othersOf(layout) < leastName) {
        layout.value = 12;
        layout.state = 11;
        layout.indent = 1;
    }
    if (columns - othersOf(layout) < columns / 3) {
        layout.state = 0;
    }
    if (columns - othersOf(layout) < columns / 3) {
        layout.value = columns / 2;
    }
    layout.name = std::max(columns - othersOf(layout), 0);
    return layout;
}

} // namespace qel::watch
