// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/SampleImages.h"

#include "tools/replay/RecordingPlayer.h"
#include "tools/replay/ReplayLog.h"
#include "tools/replay/ReplayOptions.h"

#include "domain/MeasureValue.h"
#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"
#include "tests/tools/replay/ShippedRecordings.h"
#include "writer/QelSharedMemoryWriter.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

namespace qel::test {

namespace {

using inspect::Image;

constexpr long long voltage = shm::key::voltage;
constexpr long long activePower = shm::key::activePower;
constexpr long long activeEnergy = shm::key::activeEnergy;
constexpr long long temperature = shm::key::temperature;
constexpr long long humidity = shm::key::humidity;
constexpr long long unitState = shm::key::pduState;

constexpr double volts = 230.1;
constexpr double watts = 1234.5;
constexpr double wattHours = 4567.0;
constexpr double degrees = 21.5;
constexpr double percent = 40.0;

/// A writer with the usual unit laid out in it; every value is delivered once.
class SampleWriter {
public:
    SampleWriter() {
        shm::QelSharedMemoryWriter::Definitions unit;
        for (auto const point : {sample::unit, sample::inlet, sample::circuit, sample::socket1,
                                 sample::socket2, sample::socket3, sample::sensor, sample::group}) {
            unit[point];
        }
        for (auto const point : {sample::inlet, sample::socket1, sample::socket2, sample::socket3}) {
            unit[point].mvs = {{voltage, 0}, {activePower, 0}, {activeEnergy, 0}};
        }
        unit[sample::sensor].mvs = {{temperature, 0}, {humidity, 0}};
        unit[sample::group].mvs = {{activePower, 0}};
        writer_.addStructure(unit);
        constexpr int master = 2;
        constexpr int singlePhase = 1;
        constexpr int fuse16A = 21;
        constexpr int schuko = 30;
        constexpr int temperatureHumidity = 2;
        writer_.injectTypes({{sample::unit, master},
                             {sample::inlet, singlePhase},
                             {sample::circuit, fuse16A},
                             {sample::socket1, schuko},
                             {sample::socket2, schuko},
                             {sample::socket3, schuko},
                             {sample::sensor, temperatureHumidity}});
        for (auto const point : {sample::inlet, sample::socket1, sample::socket2}) {
            deliver(point | voltage, volts);
            deliver(point | activePower, watts);
            deliver(point | activeEnergy, wattHours);
        }
        deliver(sample::sensor | temperature, degrees);
        deliver(sample::sensor | humidity, percent);
        deliver(sample::group | activePower, watts + watts);
    }

    void deliver(long long svid, double number, eStatus_Bits state = eStatus_NoError,
                 std::uint64_t time = sampleTime) {
        writer_.updateMV(svid, std::make_unique<measval::MeasureValue>(number, time, state));
    }

    shm::QelSharedMemoryWriter& writer() { return writer_; }

    /// Propagates and activates.
    Image finish() {
        writer_.setActive();
        writer_.propagateStates();
        return copy();
    }

    static Image copy() { return inspect::LiveRegion().copy(); }

private:
    shm::QelSharedMemoryWriter writer_;
};

Image wiped() {
    shm::QelSharedMemoryWriter const writer;
    return SampleWriter::copy();
}

Image inactive() {
    SampleWriter const unit;
    return SampleWriter::copy();
}

Image oneDevice() {
    shm::QelSharedMemoryWriter writer;
    shm::QelSharedMemoryWriter::Definitions unit;
    unit[sample::unit];
    writer.addStructure(unit);
    writer.updateMV(sample::unit | unitState,
                    std::make_unique<measval::MeasureValue>(0.0, sampleTime, eStatus_On));
    writer.setActive();
    return SampleWriter::copy();
}

Image healthy() {
    return SampleWriter().finish();
}

Image recorded() {
    constexpr std::uint64_t rows = 300; // one limit has been crossed by then
    tools::ReplayOptions options;
    options.files = {outletsFile, environmentFile};
    options.limitFiles = {QEL_DATA_DIR "/limits.txt"};
    options.until = rows;
    tools::ReplayLog log(nullptr);
    tools::RecordingPlayer player(tools::readRecordings(options), log, [] {});
    player.begin();
    while (player.due()) {
        player.step();
    }
    return SampleWriter::copy();
}

/// All slots in use: a unit, an inlet, seven circuits of 113 sockets each, eleven values at every point.
Image full() {
    constexpr unsigned circuits = 7;
    constexpr unsigned sockets = 113;
    constexpr unsigned valuesPerPoint = 11;
    constexpr unsigned circuitShift = 24;
    constexpr unsigned socketShift = 16;
    constexpr long long inletOnly = 0x010001FF00000000;
    shm::QelSharedMemoryWriter writer;
    shm::QelSharedMemoryWriter::Definitions unit;
    unit[sample::unit];
    unit[sample::inlet];
    for (unsigned circuit = 1; circuit <= circuits; ++circuit) {
        auto const above = inletOnly | static_cast<long long>(circuit) << circuitShift;
        unit[above | 0xFFLL << socketShift];
        for (unsigned socket = 1; socket <= sockets; ++socket) {
            unit[above | static_cast<long long>(socket) << socketShift];
        }
    }
    for (auto& [svid, definition] : unit) {
        for (unsigned short key = 1; key <= valuesPerPoint; ++key) {
            definition.mvs[key] = 0;
        }
    }
    writer.addStructure(unit);
    for (auto const& [svid, definition] : unit) {
        for (auto const& [key, position] : definition.mvs) {
            writer.updateMV(svid | key,
                            std::make_unique<measval::MeasureValue>(volts, sampleTime, eStatus_NoError));
        }
    }
    writer.setActive();
    writer.propagateStates();
    return SampleWriter::copy();
}

Image withValueState(eStatus_Bits state) {
    SampleWriter unit;
    unit.deliver(sample::socket2 | activePower, watts, state);
    return unit.finish();
}

Image alarm() {
    return withValueState(eStatus_HighAlarm);
}

Image warning() {
    return withValueState(eStatus_LowWarning);
}

Image withUnitState(eStatus_Bits state) {
    SampleWriter unit;
    unit.deliver(sample::unit | unitState, 0.0, state);
    return unit.finish();
}

Image lost() {
    return withUnitState(eStatus_Lost);
}

Image updating() {
    return withUnitState(eStatus_DeviceIsUpdating);
}

Image updateError() {
    return withUnitState(eStatus_DeviceUpdateError);
}

/// A sensor was plugged in and out until its slots came round again.
Image recycled() {
    constexpr unsigned rounds = 800;
    SampleWriter unit;
    std::unordered_set<long long> const without{
        sample::unit,    sample::inlet,           sample::circuit,
        sample::socket1, sample::inlet | voltage, sample::socket1 | voltage,
    };
    auto with = without;
    with.insert(sample::sensor);
    with.insert(sample::sensor | temperature);
    with.insert(sample::sensor | humidity);
    for (unsigned round = 0; round < rounds; ++round) {
        unit.writer().modifyStructure(without);
        unit.writer().modifyStructure(with);
    }
    unit.deliver(sample::sensor | temperature, degrees);
    return unit.finish();
}

Image changed(Image const& image, std::function<void(shm::record::Region&)> const& change) {
    auto region = std::make_unique<shm::record::Region>(image.region());
    change(*region);
    return {std::move(region), image.size()};
}

shm::record::QelShmMP& pointOf(shm::record::Region& region, long long svid) {
    auto* const found = std::find_if(std::begin(region.points), std::end(region.points),
                                     [&](auto const& point) { return point.guid == svid; });
    return *found;
}

/// What no writer writes but a reader may meet: numbers that are none, times that are none, unknown codes.
Image oddContent() {
    return changed(healthy(), [](shm::record::Region& region) {
        auto& socket = pointOf(region, sample::socket1);
        constexpr auto noState = static_cast<eStatus_Bits>(99);
        socket.state = noState;
        socket.type = 255;
        auto& first = region.values[socket.mvs];
        first.value = std::numeric_limits<double>::quiet_NaN();
        first.at = std::numeric_limits<std::uint64_t>::max();
        auto& second = region.values[first.next];
        second.value = -std::numeric_limits<double>::infinity();
        second.at = sampleTime + 3600000;
        auto& third = region.values[second.next];
        third.key = 0x3;
        third.value = 1e300;
        constexpr std::int64_t strangeId = 0x7F63000102030000;
        pointOf(region, sample::socket3).guid = strangeId;
    });
}

/// An alarm was delivered and not yet propagated.
Image unfolded() {
    SampleWriter unit;
    unit.finish();
    unit.deliver(sample::socket2 | activePower, watts, eStatus_HighAlarm);
    return SampleWriter::copy();
}

/// A list of points and a chain of values that lead back into themselves.
Image cyclic() {
    return changed(healthy(), [](shm::record::Region& region) {
        pointOf(region, sample::socket3).next = pointOf(region, sample::socket1).pos;
        auto const first = pointOf(region, sample::inlet).mvs;
        region.values[region.values[first].next].next = first;
    });
}

Image wrongPosition() {
    return changed(healthy(), [](shm::record::Region& region) { pointOf(region, sample::circuit).pos = 7; });
}

Image truncated() {
    constexpr std::size_t kept = 100000;
    auto const image = healthy();
    return {image.bytes().data(), kept};
}

Image badVersion() {
    return changed(healthy(), [](shm::record::Region& region) { region.root.version = 33; });
}

} // namespace

std::ostream& operator<<(std::ostream& out, SampleImage const& sample) {
    return out << sample.name;
}

std::vector<SampleImage> const& sampleImages() {
    static std::vector<SampleImage> const images{
        {"wiped", "created and nothing more", wiped, false, true, true, false},
        {"inactive", "laid out but not yet announced", inactive, false, true, true, true},
        {"one-device", "a unit without anything", oneDevice, true, true, true, true},
        {"healthy", "a small unit", healthy, true, true, true, true},
        {"recorded", "the recorded unit after 300 rows", recorded, true, true, true, false},
        {"full", "all slots in use", full, true, true, true, true},
        {"alarm", "a value in alarm", alarm, true, true, true, false},
        {"warning", "a value in warning", warning, true, true, true, false},
        {"lost", "the unit lost", lost, true, true, true, false},
        {"updating", "the unit updating", updating, true, true, true, false},
        {"update-error", "the unit's update failed", updateError, true, true, true, false},
        {"recycled", "slots in their second life", recycled, true, true, true, true},
        {"unfolded", "an alarm not yet propagated", unfolded, true, true, true, false},
        {"odd-content", "numbers, times and codes that are none", oddContent, true, true, false, true},
        {"cyclic", "lists that lead back into themselves", cyclic, true, false, false, true},
        {"wrong-position", "a point that says it is elsewhere", wrongPosition, true, false, false, true},
        {"truncated", "a file that was cut off", truncated, false, true, false, false},
        {"bad-version", "a version that is not known", badVersion, false, true, false, true},
    };
    return images;
}

inspect::Image sampleImage(std::string const& name) {
    for (auto const& sample : sampleImages()) {
        if (name == sample.name) {
            return sample.build();
        }
    }
    throw std::invalid_argument("there is no sample image " + name);
}

} // namespace qel::test
