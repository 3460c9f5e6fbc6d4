// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/ReplayLog.h"

#include "tools/common/SafeText.h"
#include "tools/common/TimeText.h"
#include "tools/replay/unit/Topology.h"

#include "format/KeyTable.h"
#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "inspect/naming/PointPath.h"
#include "region/SvidParts.h"

#include <iomanip>
#include <ostream>
#include <sstream>

namespace qel::tools {

namespace {

constexpr std::string_view program = "qel-replay: ";

std::string counted(std::uint64_t count, std::string_view noun) {
    return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

std::string structureText(std::size_t points, std::size_t values) {
    return counted(points, "point") + ", " + counted(values, "value");
}

std::string transition(eStatus_Bits before, eStatus_Bits after) {
    return std::string(shm::stateName(before)).append(" => ").append(shm::stateName(after));
}

// In the unit of the region: energies arrive in Wh and are stored in kWh.
std::string numberText(Reading const& reading) {
    auto const key = shm::valueKey(reading.svid);
    bool const isEnergy = shm::keyRow(key).kind == shm::KeyKind::Energy;
    return tav::ValueFormatter::str(key, isEnergy ? reading.number / shm::energyFactor : reading.number, " ");
}

} // namespace

void ReplayLog::write(std::string const& line) {
    if (out_ != nullptr) {
        *out_ << safeText(line) << std::endl; // flushed: other programs wait for these lines
    }
}

void ReplayLog::event(std::uint64_t time, std::string_view kind, std::string const& text) {
    constexpr int kindWidth = 9;
    std::ostringstream line;
    line << timeText(time) << "  " << std::left << std::setw(kindWidth) << kind << "  " << text;
    write(line.str());
}

std::string ReplayLog::noun() const {
    return steps_ == ReplaySteps::Rows ? "row" : "sample";
}

std::string ReplayLog::allReplayed() const {
    return "all " + noun() + "s replayed";
}

void ReplayLog::started(std::size_t points, std::size_t values, std::size_t files, std::size_t steps) {
    write(std::string(program) + "region active: " + structureText(points, values) + "; " +
          counted(files, steps_ == ReplaySteps::Rows ? "recording" : "capture") + ", " +
          counted(steps, noun()));
}

void ReplayLog::crossed(Crossing const& crossing) {
    crossings_ += crossing.isLoss ? 0 : 1;
    event(crossing.after.time, crossing.isLoss ? "readings" : "limit",
          crossing.column + "  " + numberText(crossing.after) + "  " +
              transition(crossing.before, crossing.after.state));
}

void ReplayLog::missing(std::uint64_t time, std::string const& file, std::size_t cells, std::size_t ofCells) {
    event(time, "readings",
          file + ": " + std::to_string(cells) + " of " + std::to_string(ofCells) + " missing");
}

void ReplayLog::changed(std::uint64_t time, Change const& change, std::size_t points, std::size_t values) {
    ++changes_;
    event(time, "structure",
          inspect::pointLabel(pointSvid(change.point)) + (change.comes ? " added, now " : " removed, now ") +
              structureText(points, values));
}

void ReplayLog::changed(std::uint64_t time, std::size_t points, std::size_t values) {
    ++changes_;
    event(time, "structure", "changed, now " + structureText(points, values));
}

void ReplayLog::cut(std::uint64_t time, std::size_t links) {
    event(time, "damage",
          links == 0 ? "no link of the sample leads back any more"
                     : counted(links, "link") + " of the sample cut that led back to where readers had been");
}

void ReplayLog::set(std::uint64_t time, std::string const& what) {
    event(time, "set", what);
}

void ReplayLog::unset(std::uint64_t time, std::string const& what) {
    event(time, "unset", what);
}

void ReplayLog::globalState(std::uint64_t time, eStatus_Bits before, eStatus_Bits after) {
    event(time, "global", transition(before, after));
}

std::string ReplayLog::stoppedEarly(std::optional<std::uint64_t> of) const {
    return (of ? std::to_string(taken_) + " of " + counted(*of, noun()) : counted(taken_, noun())) +
           " replayed, stopped at --until";
}

void ReplayLog::held(std::string_view reason) {
    write(std::string(program).append(reason).append("; the region stays until a signal comes"));
}

void ReplayLog::ended(std::string_view reason, double seconds, eStatus_Bits globalState) {
    std::ostringstream line;
    line << program << reason << ": " << counted(taken_, noun()) << ", " << counted(updates_, "update")
         << " in " << std::fixed << std::setprecision(1) << seconds << " s; ";
    if (steps_ == ReplaySteps::Rows) { // a capture holds no limits
        line << counted(crossings_, "limit crossing") << ", ";
    }
    line << counted(changes_, "structure change") << "; global state " << shm::stateName(globalState);
    if (refused_ != 0) {
        line << "; " << counted(refused_, "update") << " refused";
    }
    write(line.str());
}

} // namespace qel::tools
