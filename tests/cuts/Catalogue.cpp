// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Catalogue.h"

#include <algorithm>
#include <fstream>
#include <ios>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace qel::test {

namespace {

std::string nameOf(std::int64_t guid) {
    std::ostringstream text;
    text << std::hex << std::showbase << guid;
    return text.str();
}

/// The first moment of a set, as a number; the set must not be empty.
unsigned firstOf(Moments moments) {
    return static_cast<unsigned>(__builtin_ctz(moments));
}

bool isBehind(Moments newer, Moments older) {
    return newer != 0 && older != 0 && firstOf(newer) > 31U - static_cast<unsigned>(__builtin_clz(older));
}

} // namespace

/// Holds one picture against the past.
class Catalogue::Comparison {
public:
    Comparison(Catalogue& catalogue, Past const& past, Picture const& seen, std::string const& when)
        : catalogue_(catalogue),
          past_(past),
          seen_(seen),
          when_(when) {}

    void compare() {
        // First what the newest thing is, then what is older than that.
        for (isNoting_ = false;; isNoting_ = true) {
            comparePoints();
            compareValues();
            hold(whenGlobalStateWas(), "old-state", "");
            if (isNoting_) {
                return;
            }
        }
    }

private:
    /// A thing that was so at these moments.
    void hold(Moments moments, char const* kind, std::string const& what) {
        if (!isNoting_) {
            newest_ = moments == 0 ? newest_ : std::max(newest_, firstOf(moments));
        } else if (isOld(moments)) {
            catalogue_.note(kind, what, when_);
        }
    }

    /// Were things so at no moment since the newest one of which something is seen?
    bool isOld(Moments moments) const { return (moments >> newest_) == 0; }

    Moments whenGlobalStateWas() const {
        Moments moments = 0;
        for (std::size_t moment = 0; moment < past_.pictures().size(); ++moment) {
            if (past_.pictures()[moment].globalState == seen_.globalState) {
                moments |= Moments{1} << moment;
            }
        }
        return moments;
    }

    SeenPoint const* find(std::int64_t guid) const {
        for (auto const& point : seen_.points) {
            if (point.guid == guid) {
                return &point;
            }
        }
        return nullptr;
    }

    SeenValue const* find(std::int64_t owner, std::uint16_t key) const {
        for (auto const& value : seen_.values) {
            if (value.owner == owner && value.key == key) {
                return &value;
            }
        }
        return nullptr;
    }

    void comparePoints() {
        for (auto const& past : past_.points()) {
            auto const* const point = find(past.guid);
            auto const name = isNoting_ ? nameOf(past.guid) : std::string();
            if (point == nullptr) {
                hold(past_.all() & ~past.present, "point-missing", name);
                continue;
            }
            hold(past.present, "point-lingers", name);
            if (isNoting_ && isOld(past.present)) {
                continue;
            }
            hold(Past::when(past.seen, &SeenPoint::state, point->state), "old-state", name);
            auto const times = Past::when(past.seen, &SeenPoint::at, point->at);
            hold(times, times == 0 ? "torn-number" : "old-time", name);
            hold(Past::when(past.seen, &SeenPoint::type, point->type), "point-unset-type", name);
            auto const parents = Past::when(past.seen, &SeenPoint::parent, point->parent);
            hold(parents, "prev-stale", name);
            // prev only matters where a picture of the resting writer has it right
            if (isNoting_ && point->prev != point->before && hadItsPrev(past, *point)) {
                catalogue_.note("prev-stale", name, when_);
            }
            if (isNoting_ && std::count_if(seen_.points.begin(), seen_.points.end(),
                                           [&](auto const& other) { return other.guid == past.guid; }) > 1) {
                catalogue_.note("point-twice", name, when_);
            }
        }
    }

    /// Was prev right at all moments that show the point behind the same one?
    static bool hadItsPrev(Past::Point const& past, SeenPoint const& point) {
        return std::all_of(past.seen.begin(), past.seen.end(), [&](auto const* seen) {
            return seen == nullptr || seen->before != point.before || seen->prev == seen->before;
        });
    }

    void compareValues() {
        for (auto const& past : past_.values()) {
            if (find(past.owner) == nullptr || (isNoting_ && isOld(past_.point(past.owner)->present))) {
                continue; // told of the point already
            }
            auto const* const value = find(past.owner, past.key);
            auto const name = isNoting_ ? nameOf(past.owner + past.key) : std::string();
            if (value == nullptr) {
                bool const isOfNewPoint = (past_.point(past.owner)->present & 1U) == 0;
                hold(past_.all() & ~past.present, isOfNewPoint ? "point-initial" : "value-missing", name);
                continue;
            }
            hold(past.present, "value-lingers", name);
            if (isNoting_ && isOld(past.present)) {
                continue;
            }
            using Stored = WriterBench::Stored;
            auto const times = past_.whenStored(past, &SeenValue::at, &Stored::at, value->at);
            auto const states = past_.whenStored(past, &SeenValue::state, &Stored::state, value->state);
            auto const numbers = past_.whenStored(past, &SeenValue::number, &Stored::number, value->number);
            if (!isNoting_) {
                hold(times, "", name);
                hold(states, "", name);
                hold(numbers, "", name);
                continue;
            }
            noteContent(name, times, states, numbers);
        }
    }

    /// Within one value, and a value that is old as a whole.
    void noteContent(std::string const& name, Moments times, Moments states, Moments numbers) {
        auto const both = times & numbers & states;
        if (both != 0) {
            hold(both, "old-value", name);
            return;
        }
        noteIf(times == 0 || numbers == 0, "torn-number", name);
        noteIf(isBehind(times, numbers) || isBehind(states, numbers), "old-number", name);
        noteIf(isBehind(numbers, times) || isBehind(numbers, states), "new-number", name);
        if (numbers != 0 && !isBehind(times | states, numbers) && !isBehind(numbers, times & states)) {
            noteIf(isBehind(times, states) || isBehind(states, times), "old-number", name);
        }
    }

    void noteIf(bool holds, char const* kind, std::string const& what) {
        if (holds) {
            catalogue_.note(kind, what, when_);
        }
    }

    Catalogue& catalogue_;
    Past const& past_;
    Picture const& seen_;
    std::string const& when_;
    bool isNoting_ = false;
    unsigned newest_ = 0;
};

void Catalogue::note(Past const& past, Picture const& seen, std::string const& when) {
    Comparison(*this, past, seen, when).compare();
}

void Catalogue::note(std::string const& kind, std::string const& what, std::string const& when) {
    auto& entry = entries_[kind];
    if (entry.count++ == 0) {
        entry.example = when + (what.empty() ? "" : ": " + what);
    }
}

std::set<std::string> Catalogue::kinds() const {
    std::set<std::string> kinds;
    for (auto const& entry : entries_) {
        kinds.insert(entry.first);
    }
    return kinds;
}

void Catalogue::print(std::ostream& out) const {
    for (auto const& [kind, entry] : entries_) {
        out << kind << ": " << entry.count << " times, first: " << entry.example << '\n';
    }
}

std::set<std::string> DocumentedKinds::shownHere() const {
    std::set<std::string> kinds;
    std::set_difference(all.begin(), all.end(), notShownHere.begin(), notShownHere.end(),
                        std::inserter(kinds, kinds.end()));
    return kinds;
}

DocumentedKinds documentedKinds() {
    std::ifstream page(QEL_LAYOUT_PAGE);
    if (!page) {
        throw std::runtime_error("cannot read " QEL_LAYOUT_PAGE);
    }
    DocumentedKinds kinds;
    bool isInside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind('#', 0) == 0) {
            isInside = line.find(" What a reader may meet") != std::string::npos ||
                       line.find(" What a reader that pauses may meet") != std::string::npos;
        }
        constexpr char rowStart[] = "| `";
        if (!isInside || line.rfind(rowStart, 0) != 0) {
            continue;
        }
        auto const begin = sizeof rowStart - 1;
        auto const kind = line.substr(begin, line.find('`', begin) - begin);
        kinds.all.insert(kind);
        if (line.find("not shown") != std::string::npos) {
            kinds.notShownHere.insert(kind);
        }
    }
    return kinds;
}

} // namespace qel::test
