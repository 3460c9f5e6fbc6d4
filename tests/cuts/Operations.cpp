// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Operations.h"

#include "format/ValueKeys.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace qel::test {

namespace {

namespace key = shm::key;
using Calls = std::vector<std::function<void(WriterBench&)>>;
using Points = std::vector<std::size_t>;

constexpr long long pointStateKey = shm::key::fuseState;
constexpr int deepestLevel = 4;

class OperationsOfATree {
public:
    explicit OperationsOfATree(Tree const& tree) : tree_(tree) {}

    std::vector<Operation> all() {
        addPoints();
        for (std::size_t point = 0; point < tree_.points.size(); ++point) {
            at_ = " point " + std::to_string(point);
            put("add values to" + at_, false, {[point](WriterBench& bench) {
                    bench.addKeys(point, {5, key::apparentEnergyDelta});
                }});
            auto const below = tree_.subtree(point);
            remove(Points{point}, "");
            if (below.size() > 1) {
                remove(below, " with all below");
            }
            modify(point, below);
            update(point);
        }
        put("activate again", false, {[](WriterBench& bench) {
                bench.activate();
            }});
        return std::move(operations_);
    }

private:
    void put(std::string name, bool isScarce, Calls calls) {
        operations_.push_back({std::move(name), isScarce, std::move(calls)});
    }

    void addPoints() {
        for (auto const& place : tree_.newPlaces()) {
            put("add " + place.text, false, {[place](WriterBench& bench) {
                    bench.add(place, 2);
                }});
        }
    }

    void remove(Points const& gone, std::string const& how) {
        auto const removal = [gone](WriterBench& bench) {
            bench.remove(gone);
        };
        auto const name = "remove" + at_ + how;
        put(name, false, {removal});

        auto const beside = tree_.placeBefore(gone.front());
        replace(name + ", add beside", removal, beside);
        for (auto const& place : tree_.newPlaces()) { // in another list
            bool const isBelowGone =
                place.parent >= 0 &&
                std::find(gone.begin(), gone.end(), static_cast<std::size_t>(place.parent)) != gone.end();
            if (place.parent != beside.parent && !isBelowGone) {
                replace(name + ", add elsewhere", removal, place);
                break;
            }
        }

        for (std::size_t step = 1; step < tree_.points.size(); ++step) {
            auto const other = (gone.front() + step) % tree_.points.size();
            if (std::find(gone.begin(), gone.end(), other) == gone.end()) {
                giveValues(name, removal, other);
                break;
            }
        }
    }

    void replace(std::string const& name, std::function<void(WriterBench&)> const& removal,
                 NewPlace const& place) {
        put(name, true,
            {removal, [place](WriterBench& bench) { bench.add(place, 2); },
             [place](WriterBench& bench) { bench.update(place.svid + 1); },
             [place](WriterBench& bench) {
                 bench.update(place.svid + 2);
             }});
    }

    void giveValues(std::string const& name, std::function<void(WriterBench&)> const& removal,
                    std::size_t other) {
        auto const svid = tree_.points[other].svid;
        put(name + ", its value slots to point " + std::to_string(other), true,
            {removal,
             [other](WriterBench& bench) {
                 bench.addKeys(other, {1, 2, 3, 4});
             },
             [svid](WriterBench& bench) { bench.update(svid + 1); },
             [svid](WriterBench& bench) {
                 bench.update(svid + 2);
             }});
    }

    void modify(std::size_t point, Points const& gone) {
        if (tree_.points[point].level <= deepestLevel) { // ids name no deeper parent
            put("modify: swap" + at_, false, {[place = tree_.placeBefore(point), gone](WriterBench& bench) {
                    bench.modify(place, gone);
                }});
        }
    }

    void update(std::size_t point) {
        auto const svid = tree_.points[point].svid;
        put("set type of" + at_, false, {[point](WriterBench& bench) {
                bench.setType(point, 3);
            }});
        put("state of" + at_, false, {[svid](WriterBench& bench) {
                bench.update(svid + pointStateKey, eStatus_Off);
            }});
        put("state of" + at_ + ", kept", false, {[svid](WriterBench& bench) {
                bench.updateKept(svid + pointStateKey, eStatus_Off);
            }});
        put("state of" + at_ + ", propagate", false,
            {[svid](WriterBench& bench) { bench.update(svid + pointStateKey, eStatus_Off); },
             [](WriterBench& bench) {
                 bench.propagate();
             }});
        for (long long key = 1; key <= tree_.points[point].values; ++key) {
            auto const name = "value " + std::to_string(key) + " of" + at_;
            put("twice " + name, false,
                {[svid, key](WriterBench& bench) { bench.update(svid + key); },
                 [svid, key](WriterBench& bench) {
                     bench.update(svid + key, eStatus_HighWarning);
                 }});
            put("twice kept " + name, false,
                {[svid, key](WriterBench& bench) { bench.updateKept(svid + key); },
                 [svid, key](WriterBench& bench) {
                     bench.updateKept(svid + key, eStatus_HighWarning);
                 }});
            put("text as " + name, false, {[svid, key](WriterBench& bench) {
                    bench.updateText(svid + key);
                }});
            put("alarm of " + name + ", propagate", false,
                {[svid, key](WriterBench& bench) { bench.update(svid + key, eStatus_HighAlarm); },
                 [](WriterBench& bench) {
                     bench.propagate();
                 }});
        }
        put("add and store an energy of" + at_, false,
            {[point](WriterBench& bench) { bench.addKeys(point, {key::apparentEnergyDelta}); },
             [svid](WriterBench& bench) { bench.update(svid + key::apparentEnergyDelta); },
             [svid](WriterBench& bench) {
                 bench.updateKept(svid + key::apparentEnergyDelta);
             }});
    }

    Tree const& tree_;
    std::string at_;
    std::vector<Operation> operations_;
};

} // namespace

std::vector<Operation> operationsOn(Tree const& tree) {
    return OperationsOfATree(tree).all();
}

} // namespace qel::test
