// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/RecordingFeed.h"

#include "tools/replay/csv/ComputedValues.h"
#include "tools/replay/unit/Topology.h"

#include "format/ValueKeys.h"

#include <algorithm>
#include <utility>

namespace qel::tools {

namespace key = shm::key;

namespace {

/// The energy that a power accumulates to; nothing for other keys.
std::optional<unsigned short> energyOf(unsigned short power) {
    switch (power) {
    case key::activePower:
        return key::activeEnergy;
    case key::apparentPower:
        return key::apparentEnergy;
    default:
        return std::nullopt;
    }
}

} // namespace

Reading RecordingFeed::Output::give(std::optional<double> const& reading, std::uint64_t time,
                                    eStatus_Bits state) {
    number = reading.value_or(number);
    return {valueSvid(value), time, number, reading ? state : eStatus_Lost};
}

RecordingFeed::RecordingFeed(Recording const& recording, Recordings const& recordings,
                             LimitSet const& limits) {
    for (auto const& column : recording.columns()) {
        addColumn(column, recordings, limits);
        if (column.key == key::temperature) {
            addDewPoint(recording, column);
        }
    }
    for (unsigned circuit = 1; circuit <= circuitCount; ++circuit) {
        addSum(recording, {PointKind::Circuit, circuit}, outletsOfCircuit(circuit));
    }
    addSum(recording, socketGroup, {groupedOutlets.begin(), groupedOutlets.end()});
}

void RecordingFeed::addColumn(Column const& column, Recordings const& recordings, LimitSet const& limits) {
    ColumnFeed feed;
    feed.name = column.name;
    feed.output.value = {column.point, column.key};
    if (auto const* const limit = limits.find(column.name)) {
        feed.limit.emplace(*limit);
    }
    auto const energy = energyOf(column.key);
    if (energy && !recordings.has(column.point, *energy)) {
        feed.energy.emplace(Energy{{{column.point, *energy}}, {}});
    }
    columns_.push_back(std::move(feed));
}

void RecordingFeed::addSum(Recording const& recording, PointId const& point,
                           std::vector<unsigned> const& outlets) {
    Sum sum{{{point, key::activePower}}, {}};
    for (auto const outlet : outlets) {
        auto const column = recording.find({PointKind::Socket, outlet}, key::activePower);
        if (!column) {
            return;
        }
        sum.columns.push_back(*column);
    }
    sums_.push_back(std::move(sum));
}

void RecordingFeed::addDewPoint(Recording const& recording, Column const& column) {
    auto const temperature = recording.find(column.point, key::temperature);
    auto const humidity = recording.find(column.point, key::humidity);
    if (temperature && humidity) {
        dewPoints_.push_back({{{column.point, key::dewPoint}}, *temperature, *humidity});
    }
}

std::vector<ValueId> RecordingFeed::values() const {
    std::vector<ValueId> values;
    for (auto const& feed : columns_) {
        values.push_back(feed.output.value);
        if (feed.energy) {
            values.push_back(feed.energy->output.value);
        }
    }
    for (auto const& sum : sums_) {
        values.push_back(sum.output.value);
    }
    for (auto const& feed : dewPoints_) {
        values.push_back(feed.output.value);
    }
    return values;
}

bool RecordingFeed::feeds(PointId const& point) const {
    auto const fed = values();
    return std::any_of(fed.begin(), fed.end(), [&](ValueId const& value) { return value.point == point; });
}

void RecordingFeed::convertCell(ColumnFeed& feed, std::optional<double> const& cell, std::uint64_t time,
                                RowReadings& result) {
    auto const limited = cell && feed.limit ? feed.limit->update(*cell) : eStatus_NoError;
    auto const reading = feed.output.give(cell, time, limited);
    if (feed.limit && reading.state != feed.state) {
        bool const isLoss = !cell || limited == feed.limited;
        result.crossings.push_back({feed.name, feed.state, reading, isLoss});
    }
    feed.state = reading.state;
    feed.limited = cell ? limited : feed.limited;
    result.readings.push_back(reading);
    if (feed.energy) {
        std::optional<double> total;
        if (cell) {
            feed.energy->counter.add(time, *cell);
            total = feed.energy->counter.total();
        }
        result.readings.push_back(feed.energy->output.give(total, time));
    }
    result.missing += cell ? 0 : 1;
}

RowReadings RecordingFeed::convert(Row const& row) {
    RowReadings result;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        convertCell(columns_[column], row.cells.at(column), row.time, result);
    }
    for (auto& sum : sums_) {
        double total = 0.0;
        bool isWhole = true;
        for (auto const column : sum.columns) {
            total += columns_[column].output.number;
            isWhole = isWhole && row.cells.at(column).has_value();
        }
        result.readings.push_back(sum.output.give(total, row.time, isWhole ? eStatus_NoError : eStatus_Lost));
    }
    for (auto& feed : dewPoints_) {
        auto const& temperature = row.cells.at(feed.temperature);
        auto const& humidity = row.cells.at(feed.humidity);
        auto const point = temperature && humidity ? dewPoint(*temperature, *humidity) : std::nullopt;
        result.readings.push_back(feed.output.give(point, row.time));
    }
    return result;
}

} // namespace qel::tools
