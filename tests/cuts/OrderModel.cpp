// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/OrderModel.h"

#include <algorithm>

namespace qel::test {

namespace {

/// The two halves of a store of 8 bytes.
void putHalves(Store const& store, Stores& stores) {
    constexpr unsigned int halfBits = 32;
    constexpr std::uint64_t halfMask = 0xFFFFFFFF;
    auto low = store;
    low.width = 4;
    low.before &= halfMask;
    low.written &= halfMask;
    auto high = low;
    high.offset += 4;
    high.before = store.before >> halfBits;
    high.written = store.written >> halfBits;
    stores.push_back(low);
    stores.push_back(high);
}

} // namespace

OrderModel::OrderModel(Stores const& stores, Halves halves) {
    for (auto const& store : stores) {
        if (halves == Halves::Split && store.width == 8) {
            putHalves(store, stores_);
        } else {
            stores_.push_back(store);
        }
    }
}

bool OrderModel::forEachState(std::uint8_t* region, Reach* reach, std::function<bool()> const& met) {
    for (std::size_t frontier = 0;; ++frontier) {
        collectLate(frontier);
        if (reach != nullptr) {
            reach->compute(region, late_);
            locations_.erase(
                std::remove_if(locations_.begin(), locations_.end(),
                               [&](auto const& location) { return !reach->contains(location.offset); }),
                locations_.end());
        }
        if (!forEachChoice(region, met)) {
            return false;
        }
        // On to the next release store or fence; behind the last one everything becomes visible.
        while (frontier < stores_.size() && stores_[frontier].kind == StoreKind::Plain) {
            apply(stores_[frontier++], region);
        }
        if (frontier == stores_.size()) {
            return true;
        }
        apply(stores_[frontier], region);
    }
}

bool OrderModel::forEachPrefix(std::uint8_t* region, Reach* reach, std::function<bool()> const& met) const {
    bool ends = !met();
    for (std::size_t next = 0; next < stores_.size() && !ends; ++next) {
        auto const& store = stores_[next];
        bool isSeen = store.kind != StoreKind::Fence && store.before != store.written;
        if (isSeen && reach != nullptr) {
            reach->compute(region, {&store});
            isSeen = reach->contains(store.offset);
        }
        apply(store, region);
        ends = isSeen && !met();
    }
    return !ends;
}

/// The plain stores from there to the next fence, by location.
void OrderModel::collectLate(std::size_t frontier) {
    late_.clear();
    locations_.clear();
    std::vector<std::uint32_t> blocked; // a release store into the location stands before
    for (auto next = frontier; next < stores_.size(); ++next) {
        auto const& store = stores_[next];
        if (store.kind == StoreKind::Fence) {
            return;
        }
        if (store.kind == StoreKind::Release) {
            blocked.push_back(store.offset);
            continue;
        }
        if (std::find(blocked.begin(), blocked.end(), store.offset) != blocked.end()) {
            continue;
        }
        auto location = std::find_if(locations_.begin(), locations_.end(),
                                     [&](auto const& known) { return known.offset == store.offset; });
        if (location == locations_.end()) {
            location = locations_.insert(location, Location{store.offset, 0, {}});
        }
        if (store.before != store.written) {
            location->stores.push_back(&store);
        }
        late_.push_back(&store);
    }
}

/// Counts through the numbers of visible stores of all locations.
bool OrderModel::forEachChoice(std::uint8_t* region, std::function<bool()> const& met) {
    for (;;) {
        if (!met()) {
            return false;
        }
        auto turning = locations_.begin();
        for (; turning != locations_.end() && turning->visible == turning->stores.size(); ++turning) {
            while (turning->visible > 0) {
                takeBack(*turning->stores[--turning->visible], region);
            }
        }
        if (turning == locations_.end()) {
            return true;
        }
        apply(*turning->stores[turning->visible++], region);
    }
}

} // namespace qel::test
