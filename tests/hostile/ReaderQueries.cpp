// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/ReaderQueries.h"

#include "format/Print.h"
#include "reader/BaseQelShmVisitor.h"
#include "reader/MPntPosVisitor.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRoot.h"

#include "tests/hostile/Rendering.h"
#include "tests/writer/WriterFixture.h"

#include <algorithm>
#include <iterator>
#include <list>
#include <map>
#include <memory>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

using Result = std::shared_ptr<shm::IQelVisitorResult>;

constexpr std::uint32_t pointSlots = 800;
constexpr std::uint32_t valueSlots = 8800;

/// Positions that no slot has, and the last ones that a slot has.
constexpr std::uint32_t edges[] = {799, 800, 8799, 8800, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};

/// What one visit met, by slots.
struct Met {
    std::vector<std::pair<std::uint32_t, unsigned int>> points;             ///< slot, depth
    std::vector<std::tuple<std::uint32_t, long long, unsigned int>> values; ///< slot, svid, depth
    std::string tooLong;
    int roots = 0;
};

class Meeting : public shm::BaseQelShmVisitor {
public:
    Meeting(shm::QelShmRoot const& root, Met& met)
        : base_(reinterpret_cast<std::uint8_t const*>(&*root) - rawRootOffset),
          met_(met) {}

    void onRoot(shm::QelShmRoot const& root, Result& /*result*/) override {
        std::ostringstream out;
        out << root;
        ++met_.roots;
    }
    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth, Result& /*result*/) override {
        met_.points.emplace_back(slotOf(&*point, rawPoint(0), rawPoint(1) - rawPoint(0)), depth);
        note(renderedTooLong(point));
    }
    void onMVal(shm::QelShmMVal const& value, long long svid, unsigned int depth,
                Result& /*result*/) override {
        met_.values.emplace_back(slotOf(&*value, rawValue(0), rawValue(1) - rawValue(0)), svid, depth);
        note(renderedTooLong(value));
    }

private:
    std::uint32_t slotOf(void const* slot, std::size_t first, std::size_t size) const {
        auto const offset =
            static_cast<std::uint8_t const*>(slot) - base_ - static_cast<std::ptrdiff_t>(first);
        return static_cast<std::uint32_t>(offset / static_cast<std::ptrdiff_t>(size));
    }
    void note(std::string const& tooLong) {
        if (met_.tooLong.empty()) {
            met_.tooLong = tooLong;
        }
    }

    std::uint8_t const* base_;
    Met& met_;
};

class Questions {
public:
    Questions(MappedReader& reader, RawRegion const& raw, RegionWalk const& walk)
        : reader_(reader),
          raw_(raw),
          walk_(walk) {}

    std::string ask() {
        askRoot();
        askVisits();
        askScan();
        askLists();
        askLookUps();
        reader_.visitor(nullptr);
        return disagreement_;
    }

private:
    template <typename Handle>
    bool isAt(Handle const& handle, std::size_t offset) const {
        auto const* const base = reinterpret_cast<std::uint8_t const*>(&*reader_.root()) - rawRootOffset;
        return handle && reinterpret_cast<std::uint8_t const*>(&*handle) == base + offset;
    }
    long long svidOf(std::uint32_t slot) const {
        return raw_.get<std::int64_t>(rawPoint(slot) + field::guid);
    }

    void hold(bool agrees, char const* what, std::uint32_t pos = rawNone) {
        if (!agrees && disagreement_.empty()) {
            disagreement_ = std::string(what) + " at " + std::to_string(pos);
        }
    }

    void askRoot() {
        auto const root = reader_.root();
        hold(root.dvcCnt() == walk_.siblings(raw_.u32(field::devices)).size(), "number of devices");
        hold(root.grpCnt() == walk_.siblings(raw_.u32(field::groups)).size(), "number of groups");
        std::ostringstream printed;
        printed << root;
        std::ostringstream version;
        version << "version = " << std::hex << std::showbase << int{raw_.bytes()[field::version]} << ',';
        hold(printed.str().find(version.str()) != std::string::npos, "printed version");

        hold(reader_.tree() == walk_.treeText(), "tree");
    }

    Met visit(void (*how)(MappedReader&, shm::QelShmMPnt const&), shm::QelShmMPnt const& from = {}) {
        Met met;
        reader_.visitor(std::make_unique<Meeting>(reader_.root(), met));
        how(reader_, from);
        hold(met.tooLong.empty(), met.tooLong.c_str());
        return met;
    }

    void askVisits() {
        Met expected;
        for (auto const& point : walk_.points()) {
            expected.points.emplace_back(point.slot, point.depth);
            for (auto const value : point.values) {
                expected.values.emplace_back(value, svidOf(point.slot), point.depth);
            }
        }
        auto const whole =
            visit([](MappedReader& reader, shm::QelShmMPnt const& /*none*/) { reader.visit(); });
        first_ = whole.points;
        firstValues_ = whole.values;
        hold(whole.roots == 1, "calls for the root");
        holdSame(expected, whole, "visit");
        holdSame(expected, visit([](MappedReader& reader, shm::QelShmMPnt const& /*none*/) {
                     Result result = std::make_shared<shm::IQelVisitorResult>();
                     reader.visit(result);
                 }),
                 "visit with a result");
        for (auto const& [slot, depth] : topLevel()) {
            auto const points = reader_.mps(slot, SensorType::Any);
            auto const part =
                visit([](MappedReader& reader, shm::QelShmMPnt const& from) { reader.visit(from, 1); },
                      points.front());
            hold(!part.points.empty() && part.points.front() == std::pair(slot, depth), "visit of a point",
                 slot);
            Met values = visit(
                [](MappedReader& reader, shm::QelShmMPnt const& from) {
                    Result result = std::make_shared<shm::IQelVisitorResult>();
                    reader.values(from, 1, result);
                },
                points.front());
            hold(values.values.size() == walk_.valueChain(raw_.u32(rawPoint(slot) + field::mvs)).size(),
                 "values of a point", slot);
        }
    }

    /// A scan shows what a visit shows, in the same order.
    void askScan() {
        auto const* const base = reinterpret_cast<std::uint8_t const*>(&*reader_.root()) - rawRootOffset;
        auto const slotOf = [base](void const* slot, std::size_t first, std::size_t size) {
            return static_cast<std::uint32_t>(
                (static_cast<std::uint8_t const*>(slot) - base - static_cast<std::ptrdiff_t>(first)) /
                static_cast<std::ptrdiff_t>(size));
        };
        Met met;
        for (auto const& point : reader_.points()) {
            auto const pos = slotOf(&*point, rawPoint(0), rawPoint(1) - rawPoint(0));
            met.points.emplace_back(pos, point.depth());
            auto const parent = point.ancestor(point.depth() - 1);
            hold(static_cast<bool>(parent) == (point.depth() > 1), "ancestor", pos);
            for (auto const& value : point.values()) {
                met.values.emplace_back(slotOf(&*value, rawValue(0), rawValue(1) - rawValue(0)), svidOf(pos),
                                        point.depth());
            }
        }
        hold(met.points == first_, "points of a scan");
        hold(met.values == firstValues_, "values of a scan");
    }

    std::vector<std::pair<std::uint32_t, unsigned int>> topLevel() const {
        std::vector<std::pair<std::uint32_t, unsigned int>> top;
        for (auto const& point : walk_.points()) {
            if (point.depth == 1) {
                top.emplace_back(point.slot, point.depth);
            }
        }
        return top;
    }

    /// Children are visited in an order of their own, so only what was met is compared.
    void holdSame(Met expected, Met met, char const* what) {
        for (auto* const side : {&expected, &met}) {
            std::sort(side->points.begin(), side->points.end());
            std::sort(side->values.begin(), side->values.end());
        }
        hold(expected.points == met.points, what);
        hold(expected.values == met.values, what);
    }

    void askLists() {
        Positions firsts(std::begin(edges), std::end(edges));
        for (auto const& point : walk_.points()) {
            firsts.push_back(raw_.u32(rawPoint(point.slot) + field::children));
        }
        for (auto const first : firsts) {
            askSiblings(first);
        }
        firsts.assign(std::begin(edges), std::end(edges));
        for (auto const& point : walk_.points()) {
            firsts.push_back(raw_.u32(rawPoint(point.slot) + field::mvs));
        }
        for (auto const first : firsts) {
            askValues(first);
        }
    }

    void askSiblings(std::uint32_t first) {
        auto const expected = walk_.siblings(first);
        if (expected.size() > pointSlots) {
            return; // one of the edges, in a circle that nothing leads to
        }
        auto const listed = reader_.mps(first, SensorType::Any);
        hold(std::equal(expected.begin(), expected.end(), listed.begin(), listed.end(),
                        [&](auto slot, auto const& point) { return isAt(point, rawPoint(slot)); }),
             "mps", first);
        hold(reader_.root().cnt(first) == expected.size(), "cnt", first);
        auto const groups = std::count_if(expected.begin(), expected.end(), [&](auto slot) {
            return (svidOf(slot) >> 48 & 0xFF) == SensorType::SocketGroup;
        });
        hold(reader_.mps(first, SensorType::SocketGroup).size() == static_cast<std::size_t>(groups),
             "mps of one type", first);
    }

    void askValues(std::uint32_t first) {
        auto const expected = walk_.valueChain(first);
        if (expected.size() > valueSlots) {
            return;
        }
        auto const listed = reader_.mvs(first);
        hold(std::equal(expected.begin(), expected.end(), listed.begin(), listed.end(),
                        [&](auto slot, auto const& value) { return isAt(value, rawValue(slot)); }),
             "mvs", first);
    }

    void askLookUps() {
        // Of points with the same id the first one that a visit meets counts, and the slot that it names as its own.
        std::map<long long, std::uint32_t> index;
        for (auto const& [slot, depth] : first_) {
            index.emplace(svidOf(slot), raw_.u32(rawPoint(slot) + field::pos));
        }
        shm::PositionIndex visited;
        reader_.visitor(std::make_unique<shm::MPntPosVisitor>(visited));
        reader_.visit();
        hold(std::map<long long, std::uint32_t>(visited.begin(), visited.end()) == index,
             "visited positions");

        reader_.syncPositions(true);
        hold(reader_.modifications() == 0, "modifications");
        for (auto const& [svid, pos] : index) {
            auto const found = reader_.mpnt(svid, false);
            hold(pos < pointSlots ? found != nullptr && isAt(*found, rawPoint(pos)) : found == nullptr,
                 "mpnt", pos);
        }
        for (long long const unknown : {0x7B00000000000000LL, 0LL, -1LL, rootSvid}) {
            hold((reader_.mpnt(unknown, false) != nullptr) == isKnown(index, unknown),
                 "mpnt of an unknown point");
        }
        askValueLookUps(index);
    }

    static bool isKnown(std::map<long long, std::uint32_t> const& index, long long svid) {
        auto const known = index.find(svid);
        return known != index.end() && known->second < pointSlots;
    }

    /// Whether the slot holds the point and the link before it leads to it, or the list that it claims to be in does.
    bool holdsReachedPoint(std::uint32_t pos, long long svid) const {
        if (svidOf(pos) != svid) {
            return false;
        }
        auto const link = [&](std::uint32_t slot, std::size_t offset) {
            return raw_.u32(rawPoint(slot) + offset);
        };
        auto const listHolds = [&](std::uint32_t first) {
            auto const list = walk_.siblings(first);
            return std::find(list.begin(), list.end(), pos) != list.end();
        };
        auto const devices = raw_.u32(field::devices);
        auto const groups = raw_.u32(field::groups);
        auto const previous = link(pos, field::prev);
        auto const parent = link(pos, field::parent);
        if (previous < pointSlots && link(previous, field::next) == pos) {
            return true;
        }
        return parent < pointSlots ? listHolds(link(parent, field::children))
                                   : listHolds(devices) || listHolds(groups);
    }

    void askValueLookUps(std::map<long long, std::uint32_t> const& index) {
        constexpr std::size_t perPoint = 12; // a full chain takes long enough as it is
        for (auto const& [svid, pos] : index) {
            auto const point = svid & ~0xFFFFLL;
            auto const values = isKnown(index, point) && holdsReachedPoint(index.at(point), point)
                                    ? walk_.valueChain(raw_.u32(rawPoint(index.at(point)) + field::mvs))
                                    : Positions();
            auto const keyOf = [&](std::uint32_t value) {
                return raw_.get<std::uint16_t>(rawValue(value) + field::valueKey);
            };
            for (std::size_t i = 0; i < std::min(values.size(), perPoint); ++i) {
                auto const key = keyOf(values[i]);
                auto const first = std::find_if(values.begin(), values.end(),
                                                [&](auto value) { return keyOf(value) == key; });
                hold(isAt(reader_.mval(point | key, false), rawValue(*first)), "mval", *first);
                shm::QelShmKeptMVal kept(point | key);
                hold(isAt(reader_.mval(kept), rawValue(*first)), "mval kept", *first);
                hold(isAt(reader_.mval(kept), rawValue(*first)), "mval kept again", *first);
            }
            bool const hasLast =
                std::any_of(values.begin(), values.end(), [&](auto value) { return keyOf(value) == 0xFFFE; });
            hold(static_cast<bool>(reader_.mval(point | 0xFFFE, false)) == hasLast, "mval of an unknown key",
                 pos);
        }
    }

    MappedReader& reader_;
    RawRegion const& raw_;
    RegionWalk const& walk_;
    std::vector<std::pair<std::uint32_t, unsigned int>> first_; ///< points in the order of a visit
    std::vector<std::tuple<std::uint32_t, long long, unsigned int>> firstValues_; ///< values in that order
    std::string disagreement_;
};

} // namespace

std::string disagreement(MappedReader& reader, RawRegion const& raw, RegionWalk const& walk) {
    return Questions(reader, raw, walk).ask();
}

bool scanEnds(MappedReader const& reader) {
    constexpr std::size_t mostPoints = std::size_t{2} * pointSlots;
    constexpr std::size_t mostValues = 100000; // of all points together, for time's sake
    std::size_t points = 0;
    std::size_t values = 0;
    for (auto const& point : reader.points()) {
        if (++points > mostPoints || point.depth() > pointSlots) {
            return false;
        }
        if (values > mostValues) {
            continue;
        }
        std::size_t own = 0;
        for (auto const& value : point.values()) {
            if (++own > valueSlots || !value) {
                return false;
            }
        }
        values += own;
    }
    return true;
}

} // namespace qel::test
