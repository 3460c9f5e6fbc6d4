// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WatchJson.h"

#include "tools/qelshm/verbs/Json.h"
#include "tools/qelshm/verbs/PointFacts.h"

#include "inspect/image/PointTree.h"

#include <ostream>

namespace qel::tools {

namespace {

Json documentOf(std::string const& event, stream::Report const& report) {
    auto document = jsonDocument("watch");
    document["event"] = event;
    document["now"] = report.snapshot.now;
    return document;
}

Json picture(stream::Report const& report) {
    auto const& image = report.snapshot.image;
    auto const now = report.snapshot.now;
    inspect::PointTree const tree(image);
    auto document = documentOf("picture", report);
    document["points"] = Json::array();
    for (std::size_t index = 0; index < tree.nodes().size(); ++index) {
        auto const& point = report.structure.points()[index]; // in the order of the tree
        if (!point.isWatched) {
            continue;
        }
        auto const& node = tree.nodes()[index];
        auto entry = jsonPoint(pointFacts(image, tree, node), now);
        entry["values"] = Json::array();
        for (auto value = point.firstValue; value < point.firstValue + point.valueCount; ++value) {
            entry["values"].push_back(
                jsonValue(valueFacts(image, node, report.structure.values()[value].pos), now));
        }
        document["points"].push_back(std::move(entry));
    }
    return document;
}

Json changeDocument(stream::Report const& report, stream::Change const& change,
                    inspect::PointTree const& tree) {
    auto const& image = report.snapshot.image;
    auto const now = report.snapshot.now;
    auto const& node = tree.nodes()[change.point];
    auto document = documentOf("change", report);
    document["path"] = change.path;
    document["before"] = jsonState(change.before);
    document["state"] = jsonState(change.state);
    document["value"] =
        change.value ? jsonValue(valueFacts(image, node, report.structure.values()[*change.value].pos), now)
                     : Json();
    return document;
}

void printLine(std::ostream& out, Json const& document) {
    constexpr int noIndent = -1;
    out << document.dump(noIndent, ' ', true, Json::error_handler_t::replace) << '\n';
}

} // namespace

void WatchJson::take(stream::Report const& report) {
    if (report.isPictureNew) {
        printLine(out_, picture(report));
    } else if (report.isConditionNew && report.status.condition != inspect::Condition::Active) {
        auto document = documentOf("condition", report);
        document["condition"] = inspect::conditionName(report.status.condition);
        printLine(out_, document);
    }
    if (!report.changes.empty()) {
        inspect::PointTree const tree(report.snapshot.image);
        for (auto const& change : report.changes) {
            if (count_.take()) {
                printLine(out_, changeDocument(report, change, tree));
            }
        }
    }
    out_ << std::flush;
}

bool WatchJson::isDone() const {
    return count_.isReached() || !out_;
}

} // namespace qel::tools
