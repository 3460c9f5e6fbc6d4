// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/model/RandomSensors.h"

#include <iterator>

namespace qel::test {

using reference::svidOf;

RandomSensors::Svid RandomSensors::anyPoint() {
    int const device = number(1, 3);
    switch (number(0, 9)) {
    case 0:
        return svidOf({device, 0});
    case 1:
        return svidOf({device, 0, number(1, 3)});
    case 2:
        return svidOf({device, 0, number(1, 3), number(1, 3)});
    case 3:
        return svidOf({device, 0, number(1, 3), number(1, 3), number(0, 6)});
    case 4:
    case 5:
        return svidOf({device, 0, number(1, 3), number(1, 3), number(0, 6), number(1, 40)});
    case 6:
        return svidOf({device, 1, number(1, 3), number(-1, 120), number(-1, 5)});
    case 7:
        return chance(70) ? svidOf({device, 2, -1, number(1, 30)}) : svidOf({device, 2, number(1, 3)});
    case 8:
        return chance(70) ? svidOf({device, 4, number(1, 3), number(1, 3), number(-1, 6)})
                          : svidOf({device, 4, number(1, 3)});
    default:
        return svidOf(
            {number(-1, 2), number(0, 5), number(-1, 2), number(-1, 2), number(-1, 2), number(-1, 2)});
    }
}

std::uint16_t RandomSensors::anyKey() {
    static std::vector<int> const special{0x30, 0x33,   0x3A,   0x3B,   32, 38,
                                          39,   0xFFF9, 0xFFFC, 0xFFFD, 1,  0xFFFF};
    return static_cast<std::uint16_t>(chance(25) ? pick(special) : number(1, valuesPerPoint_ * 2));
}

ReferenceWriter::Keys RandomSensors::anyKeys() {
    ReferenceWriter::Keys keys;
    for (int count = number(0, valuesPerPoint_); count > 0; --count) {
        keys.insert(anyKey());
    }
    return keys;
}

void RandomSensors::insertWithParents(Svid svid, std::set<Svid>& ids) {
    ids.insert(svid);
    if (chance(2)) {
        return;
    }
    for (auto above = reference::parentCandidates(svid); !above.empty();
         above = reference::parentCandidates(above.back())) {
        ids.insert(chance(50) ? above.front() : above.back());
        ids.insert(above.back());
    }
}

ReferenceWriter::Structure RandomSensors::anyStructure(int mostPoints) {
    std::set<Svid> ids;
    for (int count = number(1, mostPoints); count > 0; --count) {
        insertWithParents(anyPoint(), ids);
    }
    if (chance(10)) {
        ids.insert(reference::rootSvid | (chance(50) ? anyKey() : 0));
    }
    ReferenceWriter::Structure structure;
    for (auto const svid : ids) {
        structure[chance(3) ? svid | anyKey() : svid] = anyKeys();
    }
    return structure;
}

RandomSensors::Update RandomSensors::anyUpdate(ReferenceWriter const& writer) {
    auto const& known = writer.known();
    auto const point = known.empty() || chance(5)
                           ? anyPoint()
                           : std::next(known.begin(), number(0, static_cast<int>(known.size()) - 1))->first;
    auto key = anyKey();
    if (auto const found = known.find(point); found != known.end() && chance(80)) {
        auto const& values = found->second.values;
        if (!values.empty()) {
            key = std::next(values.begin(), number(0, static_cast<int>(values.size()) - 1))->first;
        }
    }
    Update update;
    update.svid = point | key;
    update.number = chance(10) ? std::nullopt : std::optional(number(-1000000, 1000000) / 7.0);
    update.at = static_cast<std::uint64_t>(random_()) << 16U;
    update.state = chance(60) ? number(-2, 4) : number(-5, 50);
    return update;
}

} // namespace qel::test
