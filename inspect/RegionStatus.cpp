#include "inspect/RegionStatus.h"

#include "inspect/PointTree.h"

#include <algorithm>

namespace qel::inspect {

namespace {

/// Counts what the tree reaches and finds the newest delivery.
void addContent(RegionStatus& status, Image const& image) {
    PointTree const tree(image);
    status.pointsUsed = tree.nodes().size();
    status.valuesUsed = tree.values().size();
    auto const& region = image.region();
    for (auto const& node : tree.nodes()) {
        status.newest = std::max(status.newest, region.points[node.pos].at);
    }
    for (auto const pos : tree.values()) {
        status.newest = std::max(status.newest, region.values[pos].at);
    }
}

bool isSilent(std::uint64_t newest, std::uint64_t now, std::optional<std::chrono::milliseconds> maxAge) {
    if (!maxAge) {
        return false;
    }
    return newest == 0 || (newest < now && now - newest > static_cast<std::uint64_t>(maxAge->count()));
}

Condition conditionOf(RegionStatus const& status, Image const& image, std::uint64_t now,
                      std::optional<std::chrono::milliseconds> maxAge) {
    if (status.source.opening == Opening::Absent) {
        return Condition::Absent;
    }
    if (status.source.opening != Opening::Opened) {
        return Condition::Unreadable;
    }
    if (status.source.isReplaced) {
        return Condition::Replaced;
    }
    if (!image.isWhole()) {
        return Condition::TooShort;
    }
    if (!image.isActive()) {
        return Condition::Inactive;
    }
    return isSilent(status.newest, now, maxAge) ? Condition::Silent : Condition::Active;
}

} // namespace

char const* conditionName(Condition condition) {
    switch (condition) {
    case Condition::Absent:
        return "absent";
    case Condition::Unreadable:
        return "unreadable";
    case Condition::Replaced:
        return "replaced";
    case Condition::TooShort:
        return "too short";
    case Condition::Inactive:
        return "inactive";
    case Condition::Silent:
        return "silent";
    case Condition::Active:
        return "active";
    }
    return "";
}

RegionStatus regionStatus(RegionSource const& source, Image const& image, std::uint64_t now,
                          std::optional<std::chrono::milliseconds> maxAge) {
    RegionStatus status;
    status.source = source;
    status.size = image.size();
    status.version = image.root().version;
    status.globalState = image.root().state;
    addContent(status, image);
    status.condition = conditionOf(status, image, now, maxAge);
    return status;
}

} // namespace qel::inspect
