// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/CutWalk.h"

#include "tests/cuts/PlainWalk.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <functional>
#include <utility>

namespace qel::test {

namespace {

constexpr std::int64_t wipedId = -1;
constexpr std::uint16_t wipedKey = 0xFFFF;

/// Whether everything that the old index leads to comes to an end.
bool remembersEnd(std::uint8_t const* region, std::vector<std::uint32_t> const& slots) {
    PlainWalk const walk(region);
    return std::all_of(slots.begin(), slots.end(), [&](auto slot) {
        std::uint32_t links[5] = {};
        std::memcpy(links, region + rawPoint(slot), sizeof links);
        return walk.valuesEnd(links[field::mvs / 4]) && walk.siblingsEnd(slot) &&
               walk.siblingsEnd(links[field::children / 4]);
    });
}

bool isShown(Picture const& picture, CutReader::Found const& found) {
    return std::any_of(picture.values.begin(), picture.values.end(), [&](auto const& value) {
        return value.owner == found.point && value.key == found.key;
    });
}

} // namespace

/// The region as it goes on, store by store, from one chosen place to another and back.
class CutWalk::Film {
public:
    /// At the start.
    Film(Stores const& stores, std::uint8_t* region) : stores_(stores), region_(region) {}

    void goTo(std::size_t place) {
        while (place_ < place) {
            apply(stores_[place_++], region_);
        }
        while (place_ > place) {
            takeBack(stores_[--place_], region_);
        }
    }

    /// Places between which something changes for a reader: behind each link, and around each wiping of a slot.
    std::vector<std::size_t> places() const {
        std::vector<std::size_t> places{0};
        for (std::size_t i = 0; i < stores_.size(); ++i) {
            if (stores_[i].kind == StoreKind::Release) {
                places.push_back(i + 1);
            } else if (stores_[i].kind == StoreKind::Fence) {
                // up to the first field that is not wiped
                auto behind = i + 1;
                while (behind < stores_.size() && stores_[behind].kind == StoreKind::Plain &&
                       (behind == i + 1 || stores_[behind].offset > stores_[behind - 1].offset)) {
                    ++behind;
                }
                places.push_back(behind);
            }
        }
        places.push_back(stores_.size());
        places.erase(std::unique(places.begin(), places.end()), places.end());
        return places;
    }

private:
    Stores const& stores_;
    std::uint8_t* region_;
    std::size_t place_ = 0;
};

void CutWalk::walk(Tree const& tree, OrderModel::Halves halves) {
    ++figures_.trees;
    for (auto const& operation : operationsOn(tree)) {
        auto const recording = record(tree, operation);
        auto const name = tree.name + ", " + operation.name;
        if (!recording.isComplete()) {
            noteViolation("a store bypasses the recorded functions", name);
        }
        Judge const whole(recording.past(), false);
        Reach reach(reader_.rememberedSlots());
        auto* const used = isPruning_ ? &reach : nullptr;
        recording.rewind();
        bool goesOn = OrderModel(recording.stores(), OrderModel::Halves::Whole)
                          .forEachPrefix(bench_.bytes(), used,
                                         [&] { return meet(recording, whole, name + ", in order"); });
        if (goesOn) {
            recording.rewind();
            goesOn = OrderModel(recording.stores(), OrderModel::Halves::Whole)
                         .forEachState(bench_.bytes(), used,
                                       [&] { return meet(recording, whole, name + ", reordered"); });
        }
        if (goesOn && halves == OrderModel::Halves::Split) {
            recording.rewind();
            Judge const torn(recording.past(), true);
            OrderModel(recording.stores(), OrderModel::Halves::Split).forEachState(bench_.bytes(), used, [&] {
                return meet(recording, torn, name + ", reordered in halves");
            });
        }
        recording.finish();
    }
}

void CutWalk::walk(Recording const& recording, Stores const& stores, std::string const& name) {
    Judge const judge(recording.past(), false);
    Reach reach(reader_.rememberedSlots());
    recording.rewind();
    OrderModel(stores, OrderModel::Halves::Whole)
        .forEachState(bench_.bytes(), isPruning_ ? &reach : nullptr,
                      [&] { return meet(recording, judge, name); });
    recording.finish();
}

Recording CutWalk::record(Tree const& tree, Operation const& operation) {
    Recording recording(bench_, tree, operation, [&](Picture const& first) { reader_.remember(first); });
    ++figures_.operations;
    figures_.stores += recording.stores().size();
    return recording;
}

bool CutWalk::meet(Recording const& recording, Judge const& judge, std::string const& when) {
    ++figures_.states;
    std::string verdict;
    try {
        verdict = complaint(recording.past(), judge, when);
    } catch (std::exception const& failure) {
        verdict = failure.what();
    }
    if (!verdict.empty()) {
        noteViolation(verdict, when);
    }
    return verdict.empty();
}

std::string CutWalk::complaint(Past const& past, Judge const& judge, std::string const& when) {
    if (!PlainWalk(bench_.bytes()).walk(plain_)) {
        return "the walk does not end";
    }
    if (!remembersEnd(bench_.bytes(), reader_.rememberedSlots())) {
        return "a chain from a remembered point does not end";
    }
    reader_.visit(visited_);
    if (!visited_.showsTheSameAs(plain_)) {
        return "a visit meets something else than the links say";
    }
    reader_.scan(scanned_);
    if (!scanned_.isInTheOrderOf(visited_) || !scanned_.showsTheSameAs(plain_)) {
        return "a scan meets something else than a visit";
    }
    if (auto verdict = judge.judge(plain_); !verdict.empty()) {
        return verdict;
    }
    auto const& pictures = past.pictures();
    if (std::none_of(pictures.begin(), pictures.end(),
                     [&](auto const& picture) { return picture.showsTheSameAs(plain_); })) {
        catalogue_.note(past, plain_, when);
    }
    if (auto verdict = reader_.compareLists(visited_); !verdict.empty()) {
        return verdict;
    }
    std::size_t unfound = 0;
    if (auto verdict = reader_.compareIndex(visited_, past, unfound); !verdict.empty()) {
        return verdict;
    }
    if (unfound > 0) {
        catalogue_.note("lookup-null", "with a new index", when);
    }
    return judgeOldIndex(judge, when);
}

std::string CutWalk::judgeOldIndex(Judge const& judge, std::string const& when) {
    reader_.lookUpByOldIndex(found_);
    for (auto const& found : found_) {
        if (found.isNull) {
            if (isShown(plain_, found)) {
                catalogue_.note("lookup-null", "with an old index", when);
            }
            continue;
        }
        if (found.value.key != found.key) {
            return "mval with an old index gives a value of another key";
        }
        if (auto verdict = judge.judge(found.value); !verdict.empty()) {
            return "mval with an old index: " + verdict;
        }
        if (!isShown(plain_, found)) {
            catalogue_.note("lookup-lingers", "", when);
        }
    }
    std::size_t foreign = 0;
    auto verdict = reader_.countForeignPoints(foreign);
    if (foreign > 0) {
        catalogue_.note("handle-replaced", "", when);
    }
    if (isDigesting_) {
        noteDigest();
    }
    return verdict;
}

void CutWalk::walkMoving(Tree const& tree) {
    ++figures_.trees;
    for (auto const& operation : operationsOn(tree)) {
        visitMoving(record(tree, operation), tree.name + ", " + operation.name + ", moving");
    }
}

void CutWalk::visitMoving(Recording const& recording, std::string const& when) {
    Judge const judge(recording.past(), false);
    recording.rewind();
    Film film(recording.stores(), bench_.bytes());
    auto const places = film.places();
    for (auto from = places.begin(); from != places.end(); ++from) {
        film.goTo(*from);
        reader_.visit(visited_);
        auto const callbacks = visited_.points.size() + visited_.values.size() + 1;
        for (auto to = from + 1; to != places.end(); ++to) {
            for (std::size_t at = 0; at < callbacks; ++at) {
                for (auto const walk : {&CutReader::visit, &CutReader::scan}) {
                    film.goTo(*from);
                    std::string verdict;
                    try {
                        (reader_.*walk)(visited_, [&](std::size_t callback) {
                            if (callback == at) {
                                film.goTo(*to);
                            }
                        });
                        verdict = judgeMoving(recording.past(), judge, when);
                    } catch (std::exception const& failure) {
                        verdict = failure.what();
                    }
                    ++figures_.movingVisits;
                    noteViolation(verdict, when);
                }
            }
        }
    }
    recording.finish();
}

std::string CutWalk::judgeMoving(Past const& past, Judge const& judge, std::string const& when) {
    for (auto const& point : visited_.points) {
        auto verdict = judge.judge(point);
        if (verdict.empty()) {
            continue;
        }
        if (point.guid != wipedId || point.slot >= 800) {
            return verdict;
        }
        catalogue_.note("point-wiped", "slot " + std::to_string(point.slot), when);
    }
    for (auto const& value : visited_.values) {
        auto verdict = judge.judge(value);
        if (verdict.empty()) {
            continue;
        }
        if (value.slot >= 8800) {
            return verdict;
        }
        if (value.key == wipedKey) {
            catalogue_.note("value-wiped", verdict, when);
            continue;
        }
        auto const isOthers = [&](auto const& other) {
            return other.key == value.key && past.hadValue(value.slot, other.owner, other.key) &&
                   judge.hasStoredContent(value, other);
        };
        if (std::none_of(past.values().begin(), past.values().end(), isOthers)) {
            return verdict;
        }
        catalogue_.note("value-changed-hands", verdict, when);
    }
    return judgeStaying(past, when);
}

/// What is there all the time is met, once.
std::string CutWalk::judgeStaying(Past const& past, std::string const& when) {
    for (auto const& point : past.points()) {
        auto const met = std::count_if(visited_.points.begin(), visited_.points.end(),
                                       [&](auto const& seen) { return seen.guid == point.guid; });
        if (met == 0 && point.present == past.all()) {
            return "a visit misses a point that is there all the time";
        }
        if (met > 1) {
            catalogue_.note("point-twice", "", when);
        }
    }
    for (auto const& value : past.values()) {
        auto const isIt = [&](auto const& seen) {
            return seen.owner == value.owner && seen.key == value.key;
        };
        if (value.present == past.all() &&
            std::none_of(visited_.values.begin(), visited_.values.end(), isIt)) {
            return "a visit misses a value that is there all the time";
        }
    }
    return {};
}

void CutWalk::noteDigest() {
    std::string shown;
    auto const put = [&](auto... numbers) {
        ((shown += std::to_string(numbers) + ' '), ...);
    };
    auto const putValue = [&](SeenValue const& value) {
        put(value.owner, value.key, value.slot, value.number, value.at, value.state);
    };
    put(visited_.globalState);
    for (auto const& point : visited_.points) {
        put(point.slot, point.guid, point.prev, point.parent, point.depth, point.state, point.at, point.type);
    }
    std::for_each(visited_.values.begin(), visited_.values.end(), putValue);
    for (auto const& found : found_) {
        put(found.isNull);
        putValue(found.value);
    }
    digests_.insert(std::hash<std::string>()(shown));
}

void CutWalk::noteViolation(std::string const& violation, std::string const& when) {
    if (violation_.empty() && !violation.empty()) {
        violation_ = when + ": " + violation;
    }
}

} // namespace qel::test
