// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/StoreLog.h"

#include "tests/support/RawRegion.h"

#include <cstdlib>
#include <cstring>

namespace qel::test {

namespace {

StoreLog* current = nullptr;

/// Widths of a record's fields, first to last, once more on purpose.
constexpr std::uint8_t pointFields[] = {4, 4, 4, 4, 4, 4, 8, 8, 4, 1, 3};
constexpr std::uint8_t valueFields[] = {8, 8, 4, 4, 2, 6};

} // namespace

void apply(Store const& store, std::uint8_t* region) {
    std::memcpy(region + store.offset, &store.written, store.width);
}

void takeBack(Store const& store, std::uint8_t* region) {
    std::memcpy(region + store.offset, &store.before, store.width);
}

StoreLog::StoreLog(void const* region) : region_(static_cast<std::uint8_t const*>(region)) {
    if (current != nullptr) {
        std::abort(); // the stores of one would be taken for those of the other
    }
    current = this;
}

StoreLog::~StoreLog() {
    current = nullptr;
}

void StoreLog::note(StoreKind kind, void const* field, std::size_t width, void const* written) {
    if (current == nullptr) {
        return;
    }
    auto const offset = static_cast<std::uint8_t const*>(field) - current->region_;
    if (offset < 0 || static_cast<std::size_t>(offset) + width > rawRegionSize || width > 8) {
        std::abort(); // a store beside the region
    }
    Store store;
    store.kind = kind;
    store.width = static_cast<std::uint8_t>(width);
    store.offset = static_cast<std::uint32_t>(offset);
    std::memcpy(&store.before, field, width);
    std::memcpy(&store.written, written, width);
    current->stores_.push_back(store);
}

void StoreLog::noteFence() {
    if (current != nullptr) {
        current->stores_.emplace_back();
    }
}

void StoreLog::noteWipe(void const* slot, std::size_t size, std::uint8_t byte) {
    std::uint64_t written = 0;
    std::memset(&written, byte, sizeof written);
    auto const* field = static_cast<std::uint8_t const*>(slot);
    auto const fill = [&](auto const& widths) {
        for (auto const width : widths) {
            note(StoreKind::Plain, field, width, &written);
            field += width;
        }
    };
    if (size == rawPoint(1)) {
        fill(pointFields);
    } else if (size == rawValue(1) - rawValue(0)) {
        fill(valueFields);
    } else {
        std::abort(); // no record of the region
    }
}

} // namespace qel::test
