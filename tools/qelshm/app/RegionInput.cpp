// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/RegionInput.h"

#include "tools/qelshm/app/ManagerUser.h"

#include "inspect/check/ObjectCheck.h"
#include "inspect/image/ImageFile.h"
#include "inspect/image/RegionStatus.h"
#include "inspect/naming/PointPath.h"

#include <system_error>
#include <thread>

namespace qel::tools {

namespace {

constexpr std::size_t mostProblems = 10; ///< so many are told one by one

std::uint64_t systemTime() {
    auto const sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count());
}

std::string slotText(inspect::SlotKind kind, std::uint32_t pos) {
    switch (kind) {
    case inspect::SlotKind::Root:
        return "the root";
    case inspect::SlotKind::Point:
        return "point slot " + std::to_string(pos);
    case inspect::SlotKind::Value:
        return "value slot " + std::to_string(pos);
    }
    return {};
}

std::string cutText(inspect::SkippedLink const& cut) {
    bool const isValue = cut.field == inspect::LinkField::Values || cut.fromKind == inspect::SlotKind::Value;
    auto const target = isValue ? inspect::SlotKind::Value : inspect::SlotKind::Point;
    return slotText(cut.fromKind, cut.fromPos) + ": " + inspect::fieldName(cut.field) + " leads to " +
           slotText(target, cut.toPos) + ", which stands elsewhere already; not followed";
}

std::string conditionSentence(inspect::RegionStatus const& status) {
    switch (status.condition) {
    case inspect::Condition::Absent:
        return std::string("there is no shared-memory object ") + shm::REGION_NAME;
    case inspect::Condition::Unreadable:
        return std::string("the shared-memory object ") + shm::REGION_NAME +
               " cannot be read: " + inspect::openingProblem(status.source);
    case inspect::Condition::Replaced:
        return "the object was replaced or removed while it was read; this is what was left in it";
    case inspect::Condition::TooShort:
        return "only " + std::to_string(status.size) + " of " + std::to_string(shm::REGION_SIZE) +
               " bytes are there";
    case inspect::Condition::Inactive:
        return "the region is not active: its version is " + std::to_string(status.version) + ", not " +
               std::to_string(shm::ACTIVE_VERSION);
    case inspect::Condition::Silent:
    case inspect::Condition::Active:
        return {};
    }
    return {};
}

} // namespace

RegionInput fileInput(std::string const& file) {
    return {inspect::readImage(file), {}, file, systemTime()};
}

RegionInput liveInput() {
    inspect::LiveRegion const region;
    RegionInput input;
    try {
        input.image = region.copy();
        input.source = region.source();
    } catch (std::system_error const& error) {
        input.source = region.source();
        input.source.opening = inspect::Opening::Unreadable;
        input.source.error = error.code().value();
    }
    input.now = systemTime();
    return input;
}

RegionInput awaitActive(std::chrono::seconds longest, std::function<void(std::string const&)> const& tell) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds interval(50);
    constexpr std::chrono::milliseconds patience(500); // nothing is told about waits that are shorter
    auto const start = Clock::now();
    std::string told;
    for (;;) {
        auto input = liveInput();
        auto const problem = conditionProblem(input);
        auto const waited = Clock::now() - start;
        if (problem.empty() || waited >= longest) {
            return input;
        }
        if (waited >= patience && told != problem) {
            told = problem;
            tell("waiting, " + problem);
        }
        std::this_thread::sleep_for(interval);
    }
}

inspect::Findings objectFindings(RegionInput const& input) {
    auto const& object = input.source.object;
    if (!object) {
        return {};
    }
    constexpr uid_t root = 0;
    return inspect::checkObject(*object, object->uid == root ? std::nullopt : managerUser());
}

void requireOpened(RegionInput const& input) {
    if (input.source.opening != inspect::Opening::Opened) {
        throw NothingThereError(conditionProblem(input));
    }
}

std::string conditionProblem(RegionInput const& input) {
    return conditionSentence(inspect::regionStatus(input.source, input.image, input.now, std::nullopt));
}

std::vector<std::string> treeProblems(inspect::Image const& image, inspect::PointTree const& tree) {
    std::vector<std::string> problems;
    for (auto const& cut : tree.skippedLinks()) {
        problems.push_back(cutText(cut));
    }
    for (auto const& node : tree.nodes()) {
        auto const& point = image.region().points[node.pos];
        if (point.pos != node.pos) {
            problems.push_back(slotText(inspect::SlotKind::Point, node.pos) + ": " +
                               inspect::pointPath(point.guid) + " says that it is in slot " +
                               std::to_string(point.pos));
        }
    }
    if (problems.size() > mostProblems) {
        auto const more = problems.size() - mostProblems;
        problems.resize(mostProblems);
        problems.push_back("and " + std::to_string(more) + " more of the kind");
    }
    return problems;
}

} // namespace qel::tools
