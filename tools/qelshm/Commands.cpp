#include "tools/qelshm/Commands.h"

#include "tools/qelshm/Snapshot.h"
#include "tools/qelshm/Text.h"

#include "domain/SensorIdentifier.h"
#include "inspect/Svid.h"

#include <algorithm>
#include <ostream>

namespace qel::tools {

namespace {

void printPoint(PointView const& point, std::ostream& out) {
    out << pointLine(point) << '\n';
    for (auto const& value : point.values) {
        out << valueLine(point, value) << '\n';
    }
}

} // namespace

void printList(shm::QelSharedMemoryReader& reader, std::ostream& out) {
    for (auto const& point : takeSnapshot(reader).points) {
        printPoint(point, out);
    }
}

void printTree(shm::QelSharedMemoryReader const& reader, std::ostream& out) {
    out << reader.tree();
}

bool printOne(shm::QelSharedMemoryReader& reader, long long svid, std::ostream& out) {
    auto const point = reader.mpnt(inspect::pointOf(svid), false);
    if (!point) {
        return false;
    }
    auto const view = viewOf(reader, *point);
    auto const key = SensorIdentifier::getKey(svid);
    if (key == 0) {
        printPoint(view, out);
        return true;
    }
    auto const value =
        std::find_if(view.values.begin(), view.values.end(),
                     [&](shm::record::QelShmMVal const& candidate) { return candidate.key == key; });
    if (value == view.values.end()) {
        return false;
    }
    out << changeLine(view, *value) << '\n';
    return true;
}

} // namespace qel::tools
