// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/Finding.h"

#include <algorithm>
#include <iterator>

namespace qel::inspect {

namespace {

/// Code, slot and field in one number. A field tells its record and slot by its place in the region; the region as a
/// whole has codes of its own.
std::uint64_t placeKey(Finding const& finding) {
    constexpr unsigned int offsetBits = 32;
    static_assert(std::uint64_t{shm::REGION_SIZE} >> offsetBits == 0);
    return static_cast<std::uint64_t>(finding.code) << offsetBits | regionOffset(finding.field, finding.pos);
}

} // namespace

std::string placeText(Finding const& finding) {
    switch (finding.field.place) {
    case Place::Region:
        return "region";
    case Place::Root:
        return "root";
    case Place::Point:
        return "point " + std::to_string(finding.pos);
    case Place::Value:
        return "value " + std::to_string(finding.pos) + " of point " + std::to_string(finding.point);
    case Place::Object:
        return "object";
    }
    return {};
}

bool isSamePlace(Finding const& left, Finding const& right) {
    return placeKey(left) == placeKey(right);
}

Findings findingsInBoth(Findings const& first, Findings const& second) {
    std::vector<std::uint64_t> keys(first.size());
    std::transform(first.begin(), first.end(), keys.begin(), placeKey);
    std::sort(keys.begin(), keys.end());
    Findings both;
    std::copy_if(second.begin(), second.end(), std::back_inserter(both), [&](Finding const& finding) {
        return std::binary_search(keys.begin(), keys.end(), placeKey(finding));
    });
    return both;
}

bool isDamage(Finding const& finding) {
    return kindOf(finding.code).severity == Severity::Finding;
}

bool hasDamage(Findings const& findings) {
    return std::any_of(findings.begin(), findings.end(), isDamage);
}

} // namespace qel::inspect
