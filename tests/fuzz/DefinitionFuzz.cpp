// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Hands arbitrary definitions to a writer and checks the region that it makes of them.
///
/// An input is a list of orders. The first byte of each is the order (modulo 8): 0 and 1 add definitions, 2 add one
/// point below a position, 3 inject a type, 4 modify to a set of ids, 5 remove what has no definition, 6 update a
/// value, 7 propagate. Then follow: of 0, 1, 4 and 5 the count of definitions (modulo 16) and the definitions; of 2 a
/// definition and the position (2 bytes, from 800 on none); of 3 an id and the code (4 bytes); of 6 an id, a state
/// (modulo 46) and a number (2 bytes).
///
/// A definition is an id, the count of keys (modulo 8) and the keys (2 bytes each). An id is a byte that chooses its
/// form: with an odd one eight bytes follow, with an even one six, the levels from the highest on; these are small
/// numbers with 0xFF for a level that is not used, and leave the key out. The key 0xFFFF, which marks a slot without a
/// value, is left out everywhere.

#include "inspect/check/RegionCheck.h"
#include "inspect/image/Image.h"
#include "region/Exceptions.h"
#include "region/SvidParts.h"

#include "tests/fuzz/Input.h"
#include "tests/fuzz/Verdict.h"
#include "tests/writer/WriterFixture.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <unordered_set>
#include <vector>

namespace qel::fuzz {

namespace {

using test::Definitions;

constexpr std::uint32_t pointSlots = 800;

class Orders {
public:
    explicit Orders(Input input) : input_(input) {}

    void run() {
        while (!input_.isEmpty()) {
            try {
                next();
            } catch (ex::InvalidSensorIdException const&) {
                continue; // refused; what was added before it stays
            }
        }
    }

    void check() {
        writer_.setActive();
        writer_.propagateStates();
        inspect::Image const image(writer_.region(), shm::REGION_SIZE);
        for (auto const& finding : inspect::checkRegion(image)) {
            require(!isDamage(finding), std::string(kindOf(finding.code).name) + " at " + placeText(finding));
        }
    }

private:
    void next() {
        switch (input_.byte() % 8) {
        case 0:
        case 1:
            writer_.addStructure(definitions());
            break;
        case 2:
            addPoint();
            break;
        case 3: {
            auto const point = id();
            writer_.injectTypes({{point, static_cast<int>(input_.number(4))}});
            break;
        }
        case 4:
            modify();
            break;
        case 5:
            writer_.removeStructure(definitions());
            break;
        case 6:
            update();
            break;
        default:
            writer_.propagateStates();
        }
    }

    long long id() {
        bool const isWhole = input_.byte() % 2 != 0;
        auto const svid = static_cast<long long>(isWhole ? input_.number(8) : levels());
        return shm::valueKey(svid) == shm::NO_KEY ? shm::pointSvid(svid) : svid;
    }

    std::uint64_t levels() {
        std::uint64_t bits = 0;
        for (int level = 0; level < 6; ++level) {
            bits = bits << 8U | input_.byte();
        }
        return bits << 16U;
    }

    std::set<unsigned short> keys() {
        std::set<unsigned short> keys;
        for (int i = 0, count = input_.byte() % 8; i < count; ++i) {
            auto const key = static_cast<unsigned short>(input_.number(2));
            if (key != shm::NO_KEY) {
                keys.insert(key);
            }
        }
        return keys;
    }

    Definitions definitions() {
        Definitions definitions;
        for (int i = 0, count = input_.byte() % 16; i < count; ++i) {
            auto const point = id();
            definitions[point] = test::withKeys(keys());
            std::ostringstream() << definitions[point];
        }
        return definitions;
    }

    void addPoint() {
        auto const point = id();
        auto const values = test::withKeys(keys()).mvs;
        auto const pos = static_cast<std::uint32_t>(input_.number(2));
        if (shm::pointSvid(point) != shm::ROOT_SVID) { // addMP() leaves that to its caller
            writer_.addMP(point, values, pos < pointSlots ? pos : shm::NO_POSITION);
        }
    }

    void modify() {
        std::unordered_set<long long> svids;
        for (auto const& [point, definition] : definitions()) {
            svids.insert(point);
            for (auto const& value : definition.mvs) {
                svids.insert(shm::pointSvid(point) | value.first);
            }
        }
        writer_.modifyStructure(svids);
    }

    void update() {
        auto const svid = id();
        auto const state = static_cast<eStatus_Bits>(input_.byte() % 46 - 2);
        writer_.updateMV(svid, test::measured(static_cast<double>(input_.number(2)), 1, state));
    }

    Input input_;
    test::ExposedWriter writer_;
};

} // namespace

} // namespace qel::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    qel::fuzz::requireQuick([&] {
        qel::fuzz::Orders orders({data, size});
        orders.run();
        orders.check();
    });
    return 0;
}
