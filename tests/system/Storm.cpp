// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/system/Storm.h"

#include "tests/support/ChangingUnit.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

namespace qel::test {

namespace {

constexpr int updatesPerStep = 100;
constexpr int removedPerStep = 20;
constexpr long long keyBits = 0xFFFF;

std::vector<long long> sortedWhole() {
    auto const whole = changingUnit::whole();
    std::vector<long long> values(whole.begin(), whole.end());
    std::sort(values.begin(), values.end());
    return values;
}

// What the writer is told to add when these values exist.
shm::QelSharedMemoryWriter::Definitions definitionsOf(std::vector<long long> const& values) {
    shm::QelSharedMemoryWriter::Definitions definitions;
    for (auto const value : values) {
        definitions[value & ~keyBits].mvs[static_cast<unsigned short>(value & keyBits)] = 0;
    }
    return definitions;
}

} // namespace

Storm::Storm(shm::QelSharedMemoryWriter& writer, FakeHardwareManager& manager, std::uint32_t seed,
             ProgressPage& page)
    : writer_(writer),
      manager_(manager),
      page_(page),
      random_(seed),
      values_(sortedWhole()) {
    whole_ = definitionsOf(values_);
}

void Storm::run(unsigned long steps) {
    layOutAnew();
    writer_.setActive();
    for (unsigned long done = 0; steps == 0 || done < steps; ++done) {
        step();
        page_.count();
    }
    begin(StormStep::None);
}

void Storm::step() {
    switch (static_cast<StormStep>(1 + random_() % 6)) {
    case StormStep::Remove:
        removePart();
        return;
    case StormStep::LayOut:
        layOutAnew();
        return;
    case StormStep::Update:
        updateValues();
        return;
    case StormStep::Propagate:
        begin(StormStep::Propagate);
        writer_.propagateStates();
        return;
    case StormStep::Announce:
        begin(StormStep::Announce);
        manager_.emitStructureChanged();
        return;
    default:
        begin(StormStep::Rest);
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
}

// Sockets and groups only: whatever stays keeps its parent.
void Storm::removePart() {
    auto kept = whole_;
    for (int i = 0; i < removedPerStep; ++i) {
        auto const gone = values_[random_() % values_.size()] & ~keyBits;
        if (gone != changingUnit::unit && gone != changingUnit::inlet && gone != changingUnit::circuit) {
            kept.erase(gone);
        }
    }
    begin(StormStep::Remove);
    writer_.removeStructure(kept);
}

void Storm::layOutAnew() {
    if (random_() % 2 == 0) {
        begin(StormStep::Remove);
        writer_.removeStructure({});
    }
    begin(StormStep::LayOut);
    writer_.addStructure(whole_);
}

void Storm::updateValues() {
    begin(StormStep::Update);
    for (int i = 0; i < updatesPerStep; ++i) {
        auto const svid = values_[random_() % values_.size()];
        auto const number = static_cast<double>(random_() % 100000) / 100;
        auto const state = static_cast<eStatus_Bits>(static_cast<int>(random_() % 46) - 2);
        writer_.updateMV(svid, std::make_unique<measval::MeasureValue>(number, ++now_, state));
    }
}

} // namespace qel::test
