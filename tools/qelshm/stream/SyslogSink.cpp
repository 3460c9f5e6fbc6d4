// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/SyslogSink.h"

#include "tools/common/SafeText.h"

#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "inspect/naming/StateClass.h"
#include "region/QelShmMVal.h"

#include <syslog.h>

#include <utility>

namespace qel::stream {

namespace {

bool isTrouble(inspect::StateClass kind) {
    return kind == inspect::StateClass::Alarm || kind == inspect::StateClass::Warning;
}

int priorityOf(Change const& change) {
    auto const kind = inspect::classOf(change.state);
    if (kind == inspect::StateClass::Alarm) {
        return LOG_ERR;
    }
    if (kind == inspect::StateClass::Warning) {
        return LOG_WARNING;
    }
    return isTrouble(inspect::classOf(change.before)) ? LOG_NOTICE : LOG_INFO;
}

std::string messageOf(Report const& report, Change const& change) {
    auto text = change.path;
    if (change.value) {
        auto const pos = report.structure.values()[*change.value].pos;
        auto const& slot = report.snapshot.image.region().values[pos];
        text.append(" ").append(tav::ValueFormatter::str(shm::QelShmMVal(&slot)));
    }
    return text.append(": ")
        .append(shm::stateName(change.before))
        .append(" => ")
        .append(shm::stateName(change.state));
}

} // namespace

SyslogSink::SyslogSink()
    : SyslogSink(
          [](int priority, std::string const& message) { ::syslog(priority, "%s", message.c_str()); }) {
    ::openlog("qelshm", LOG_PID, LOG_DAEMON);
}

SyslogSink::SyslogSink(Write write) : write_(std::move(write)) {}

void SyslogSink::take(Report const& report) {
    for (auto const& change : report.changes) {
        if (change.isStateChange()) {
            write_(priorityOf(change), tools::safeText(messageOf(report, change)));
        }
    }
}

} // namespace qel::stream
