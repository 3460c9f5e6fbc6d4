// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CaptureArguments.h"

#include "tools/qelshm/app/CaptureTime.h"
#include "tools/qelshm/app/RegionInput.h"

#include "inspect/image/ImageFile.h"
#include "inspect/naming/PointFinder.h"

#include <CLI/App.hpp>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace qel::tools {

void CaptureArguments::define(CLI::App& verb, OptionalOptions const& optional, std::string const& names,
                              bool isNameRequired) {
    verb.add_option("FILE", file_, "Capture that record wrote")->required()->type_name("");
    verb.add_option("NAME", names_, names)
        ->required(isNameRequired)
        ->check(inspect::patternProblem)
        ->type_name("");
    verb.add_option("--from", from_, "Start: 2023-11-14T22:13:20Z, +5m or -10m, as for --at")
        ->check(captureTimeProblem)
        ->type_name("TIME");
    verb.add_option("--to", until_, "End, likewise")->check(captureTimeProblem)->type_name("TIME");
    verb.excludes(optional.image);
    verb.excludes(optional.wait);
}

inspect::CaptureTimeline CaptureArguments::timeline(CommandContext const& context) const {
    std::error_code ignored; // told when the file is opened
    auto const status = std::filesystem::status(file_, ignored);
    if (std::filesystem::is_other(status)) { // it is read more than once
        throw CaptureTimeError(inPipeText(file_));
    }
    inspect::CaptureTimeline timeline(file_);
    if (!timeline.damage().empty()) {
        context.tell("warning: " + timeline.damage());
    }
    return timeline;
}

CaptureRange CaptureArguments::range(inspect::CaptureTimeline const& timeline) const {
    auto const first = timeline.first();
    auto const last = timeline.last();
    auto const timeOf = [&](std::string const& text, std::uint64_t otherwise) {
        auto const moment = parseCaptureTime(text);
        return moment ? timeline.unboundedTimeOf(*moment) : otherwise;
    };
    CaptureRange const range{timeOf(from_, std::min(first, timeOf(until_, last))),
                             timeOf(until_, std::max(last, timeOf(from_, first)))};
    if (range.until < range.from) {
        throw CaptureTimeError("--to " + until_ + " is before --from " + from_);
    }
    if (range.from > last) {
        throw CaptureTimeError(outsideText(timeline, from_));
    }
    if (range.until < first) {
        throw CaptureTimeError(outsideText(timeline, until_));
    }
    return {std::max(range.from, first), std::min(range.until, last)};
}

void CaptureArguments::requireOther(std::string const& output) const {
    requireOtherThanCapture(file_, output);
}

inspect::ValuePatterns CaptureArguments::patterns() const {
    return {names_.begin(), names_.end()};
}

std::string CaptureArguments::nothingText(std::size_t index, char const* kind) const {
    return std::string("there is no ") + kind + " \"" + names_.at(index) + "\" in this part of " + file_;
}

std::vector<inspect::SelectedValues::Name> CaptureArguments::values(inspect::CaptureTimeline const& timeline,
                                                                    CaptureRange const& range) const {
    auto const wanted = patterns();
    inspect::SelectedValues selected(wanted);
    forEachSample(
        timeline, range.from, range.until,
        [&](inspect::CaptureReader const& reader, auto /*next*/) { selected.follow(reader.region()); });
    for (std::size_t index = 0; index < wanted.size(); ++index) {
        bool const isThere =
            std::any_of(selected.names().begin(), selected.names().end(),
                        [&](auto const& name) { return wanted[index].matches(name.point, name.key); });
        if (!isThere) {
            throw inspect::NotFoundError(nothingText(index, "value"));
        }
    }
    if (selected.names().empty()) {
        throw inspect::NotFoundError("there are no values in this part of " + file_);
    }
    return selected.names();
}

} // namespace qel::tools
