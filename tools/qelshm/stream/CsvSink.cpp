// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/CsvSink.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/stream/PlainText.h"
#include "tools/qelshm/terminal/CsvText.h"

#include "format/KeyTable.h"
#include "format/StateName.h"
#include "inspect/naming/ValuePath.h"

#include <ostream>
#include <string>
#include <utility>

namespace qel::stream {

struct CsvSink::Row {
    std::string_view event;
    std::uint64_t now;
    std::string name;
    std::optional<unsigned short> key; // none for the point's own state
    double number;
    eStatus_Bits state;
    std::optional<eStatus_Bits> before;
    std::uint64_t at;
};

CsvSink::CsvSink(std::ostream& out, watch::WatchedNames names, std::optional<std::uint64_t> count)
    : out_(out),
      names_(std::move(names)),
      count_(count) {
    out_ << "event,now,name,number,unit,state,before,at" << std::endl;
}

void CsvSink::take(Report const& report) {
    if (report.isPictureNew) {
        picture(report);
    } else if (report.isConditionNew && report.status.condition != inspect::Condition::Active) {
        out_ << "condition," << tools::timeText(report.snapshot.now) << ",,,,"
             << inspect::conditionName(report.status.condition) << ",,\n";
    }
    for (auto const& change : report.changes) {
        if (!count_.take()) {
            break;
        }
        auto const key =
            change.value ? std::optional(report.structure.values()[*change.value].key) : std::nullopt;
        write({"change", report.snapshot.now, change.path, key, change.number, change.state, change.before,
               change.at});
    }
    out_ << std::flush;
}

void CsvSink::picture(Report const& report) {
    auto const& region = report.snapshot.image.region();
    auto const now = report.snapshot.now;
    for (auto const& point : report.structure.points()) {
        if (names_.hasPoint(point.svid)) {
            auto const& slot = region.points[point.pos];
            write({"picture", now, point.path, std::nullopt, 0.0, slot.state, std::nullopt, slot.at});
        }
        for (auto index = point.firstValue; index < point.firstValue + point.valueCount; ++index) {
            auto const& value = report.structure.values()[index];
            auto const& slot = region.values[value.pos];
            write({"picture", now, inspect::valuePath(point.svid, value.key), value.key, slot.value,
                   slot.state, std::nullopt, slot.at});
        }
    }
}

void CsvSink::write(Row const& row) {
    out_ << row.event << ',' << tools::timeText(row.now) << ',' << tools::csvText(row.name) << ','
         << (row.key ? plainNumber(row.number, row.state) : "") << ','
         << tools::csvText(row.key ? shm::keyUnit(*row.key) : std::string_view()) << ','
         << tools::csvText(shm::stateName(row.state)) << ','
         << tools::csvText(row.before ? shm::stateName(*row.before) : std::string_view()) << ','
         << (row.at == 0 ? "" : tools::momentText(row.at)) << '\n';
}

bool CsvSink::isDone() const {
    return count_.isReached() || !out_;
}

} // namespace qel::stream
