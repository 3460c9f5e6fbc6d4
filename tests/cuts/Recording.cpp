// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Recording.h"

#include "tests/cuts/PlainWalk.h"
#include "tests/support/RawRegion.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace qel::test {

namespace {

Picture pictureOf(std::uint8_t const* region) {
    Picture picture;
    if (!PlainWalk(region).walk(picture)) {
        throw std::logic_error("the region is circular while the writer rests");
    }
    return picture;
}

void lookAtKnown(WriterBench& bench, Picture& hidden) {
    for (auto const slot : bench.knownSlots()) {
        PlainWalk(bench.bytes()).look(slot, hidden);
    }
}

} // namespace

Recording::Recording(WriterBench& bench, Tree const& tree, Operation const& operation,
                     std::function<void(Picture const&)> const& prepared)
    : bytes_(bench.bytes()),
      past_(run(bench, tree, operation, prepared)) {}

Past Recording::run(WriterBench& bench, Tree const& tree, Operation const& operation,
                    std::function<void(Picture const&)> const& prepared) {
    bench.layOut(tree);
    if (operation.isScarce) {
        bench.takeFreeSlots();
    }
    std::vector<Picture> pictures{pictureOf(bytes_)};
    Picture hidden;
    lookAtKnown(bench, hidden);
    prepared(pictures.front());
    first_.assign(bytes_, bytes_ + rawRegionSize);
    {
        StoreLog const log(bench.writersMapping());
        for (auto const& call : operation.calls) {
            bench.nextMoment();
            call(bench);
            pictures.push_back(pictureOf(bytes_));
            lookAtKnown(bench, hidden);
        }
        stores_ = log.stores();
    }
    last_.assign(bytes_, bytes_ + rawRegionSize);

    rewind();
    isComplete_ = std::equal(first_.begin(), first_.end(), bytes_);
    for (auto const& store : stores_) {
        apply(store, bytes_);
    }
    isComplete_ = isComplete_ && std::equal(last_.begin(), last_.end(), bytes_);
    return {std::move(pictures), std::move(hidden), bench.stored()};
}

Stores Recording::fitted(Stores stores) const {
    auto region = first_;
    for (auto& store : stores) {
        store.before = 0;
        std::memcpy(&store.before, region.data() + store.offset, store.width);
        apply(store, region.data());
    }
    return stores;
}

void Recording::rewind() const {
    for (auto store = stores_.rbegin(); store != stores_.rend(); ++store) {
        takeBack(*store, bytes_);
    }
}

void Recording::finish() const {
    std::copy(last_.begin(), last_.end(), bytes_);
}

} // namespace qel::test
