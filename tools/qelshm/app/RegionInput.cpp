// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/RegionInput.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/app/CaptureTime.h"
#include "tools/qelshm/app/ManagerUser.h"
#include "tools/qelshm/app/RegionWait.h"

#include "inspect/capture/CaptureReader.h"
#include "inspect/capture/CaptureTimeline.h"
#include "inspect/check/ObjectCheck.h"
#include "inspect/image/ImageFile.h"
#include "inspect/naming/PointPath.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <system_error>
#include <thread>

namespace qel::tools {

namespace {

constexpr std::size_t mostProblems = 10; ///< that are told one by one

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
    return slotText(cut.fromKind, cut.fromPos) + ": " + inspect::fieldName(cut.field) + " links to " +
           slotText(target, cut.toPos) + ", which is linked elsewhere already; link ignored";
}

RegionInput captureInput(std::string const& file, std::string const& at) {
    inspect::CaptureTimeline const timeline(file);
    auto const sample = timeline.at(at.empty() ? timeline.last() : captureTime(timeline, at));
    RegionInput input;
    input.image = sample.image;
    input.file = file;
    input.now = sample.time;
    input.capture =
        CaptureOrigin{sample.time, timeline.first(), timeline.last(), timeline.samples(), timeline.damage()};
    return input;
}

RegionInput awaitActive(RegionWait wait) {
    for (;;) {
        auto input = liveInput();
        auto const problem = conditionProblem(input);
        wait.note(problem);
        if (problem.empty() || wait.isOver()) {
            return input;
        }
        std::this_thread::sleep_for(RegionWait::interval);
    }
}

} // namespace

RegionInput fileInput(std::string const& file, std::string const& at) {
    if (inspect::isCapture(file)) {
        return captureInput(file, at);
    }
    auto const image = inspect::readImage(file);
    if (inspect::beginsAsCapture(image.bytes())) {
        throw CaptureTimeError(inPipeText(file));
    }
    if (!at.empty()) {
        throw CaptureTimeError("--at needs a capture of record; " + file + " is an image of a single moment");
    }
    return {image, {}, file, systemTime()};
}

std::string sourceText(RegionInput const& input) {
    if (input.file.empty()) {
        return std::string("live object ") + shm::REGION_NAME;
    }
    return input.capture ? "capture " + input.file + " at " + momentText(input.capture->time)
                         : "image " + input.file;
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

RegionInput openInput(QelshmOptions const& options, std::function<void(std::string const&)> const& tell) {
    auto input = options.image.empty()
                     ? awaitActive(RegionWait(std::chrono::seconds(options.wait.value_or(0)), tell))
                     : fileInput(options.image, options.at);
    if (input.capture && !input.capture->damage.empty()) {
        tell("warning: " + input.capture->damage);
    }
    input.now = options.now.value_or(input.now);
    return input;
}

inspect::Findings objectFindings(RegionInput const& input) {
    auto const& object = input.source.object;
    if (!object) {
        return {};
    }
    constexpr uid_t root = 0;
    return inspect::checkObject(*object, object->uid == root ? std::nullopt : managerUser());
}

void requireOtherThanCapture(std::string const& capture, std::string const& output) {
    std::error_code ignored; // what is not there is not the capture
    if (std::filesystem::equivalent(capture, output, ignored)) {
        throw inspect::ImageFileError("cannot write " + output +
                                      ": it is the capture that is read; choose another file");
    }
}

void requireOpened(RegionInput const& input) {
    if (input.source.opening != inspect::Opening::Opened) {
        throw NothingThereError(conditionProblem(input));
    }
}

std::string conditionProblem(inspect::RegionStatus const& status) {
    auto const object = std::string("shared-memory object ") + shm::REGION_NAME;
    switch (status.condition) {
    case inspect::Condition::Absent:
        return "there is no " + object;
    case inspect::Condition::Unreadable:
        return "cannot read the " + object + ": " + inspect::openingProblem(status.source);
    case inspect::Condition::Replaced:
        return "the " + object + " was replaced or removed during the read";
    case inspect::Condition::TooShort:
        return "the region is too short: " + std::to_string(status.size) + " of " +
               std::to_string(shm::REGION_SIZE) + " bytes";
    case inspect::Condition::Inactive:
        return "the region is not active: its version is " + std::to_string(status.version) + ", not " +
               std::to_string(shm::ACTIVE_VERSION);
    case inspect::Condition::Silent:
    case inspect::Condition::Active:
        break;
    }
    return {};
}

std::string conditionProblem(RegionInput const& input) {
    return conditionProblem(inspect::regionStatus(input.source, input.image, input.now, std::nullopt));
}

std::vector<std::string> treeProblems(inspect::Image const& image, inspect::PointTree const& tree) {
    std::vector<std::string> problems;
    for (auto const& cut : tree.skippedLinks()) {
        problems.push_back(cutText(cut));
    }
    for (auto const& node : tree.nodes()) {
        auto const& point = image.region().points[node.pos];
        if (point.pos != node.pos) {
            problems.push_back(slotText(inspect::SlotKind::Point, node.pos) + ": pos of " +
                               inspect::pointPath(point.guid) + " is " + std::to_string(point.pos));
        }
    }
    if (problems.size() > mostProblems) {
        auto const more = problems.size() - mostProblems;
        problems.resize(mostProblems);
        problems.push_back("and " + std::to_string(more) + " more problems");
    }
    return problems;
}

} // namespace qel::tools
