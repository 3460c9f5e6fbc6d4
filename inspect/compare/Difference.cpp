// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/compare/Difference.h"

#include "inspect/image/PointTree.h"
#include "inspect/image/RecordBytes.h"
#include "inspect/naming/PointPath.h"

#include <array>
#include <cstddef>
#include <map>
#include <utility>

namespace qel::inspect {

namespace {

/// By kind.
constexpr std::array<char const*, 13> kindNames{
    "active", "version", "global state", "point added",   "point removed", "parent", "slot",
    "type",   "state",   "value added",  "value removed", "value state",   "number"};
static_assert(kindNames.size() == static_cast<std::size_t>(DifferenceKind::ValueNumber) + 1);

/// An id and a number that distinguishes several of the same id.
template <typename Id>
using Occurrence = std::pair<Id, std::size_t>;

/// Numbers each id's occurrences from 0.
template <typename Id>
class Occurrences {
public:
    Occurrence<Id> next(Id id) { return {id, counts_[id]++}; }

private:
    std::map<Id, std::size_t> counts_;
};

/// An image with its points by id.
class Side {
public:
    explicit Side(Image const& image) : image_(image), tree_(image) {
        Occurrences<long long> occurrences;
        for (std::uint32_t node = 0; node < tree_.nodes().size(); ++node) {
            ids_.push_back(occurrences.next(point(node).guid));
            nodeOf_.emplace(ids_.back(), node);
        }
    }

    std::uint32_t count() const { return static_cast<std::uint32_t>(ids_.size()); }
    shm::QelShmMP const& point(std::uint32_t node) const { return image_.region().points[slot(node)]; }
    std::uint32_t slot(std::uint32_t node) const { return tree_.nodes()[node].pos; }

    /// This side's counterpart of a node of the other side, NO_NODE for none.
    std::uint32_t counterpart(Side const& other, std::uint32_t node) const {
        auto const found = nodeOf_.find(other.ids_[node]);
        return found == nodeOf_.end() ? NO_NODE : found->second;
    }

    std::string parentPath(std::uint32_t node) const {
        auto const parent = tree_.nodes()[node].parent;
        return parent == NO_NODE ? std::string() : pointPath(point(parent).guid);
    }

    using Values = std::map<Occurrence<unsigned short>, shm::record::QelShmMVal const*>;

    /// A node's keys in chain order, and its values by key.
    std::pair<std::vector<Occurrence<unsigned short>>, Values> values(std::uint32_t node) const {
        std::vector<Occurrence<unsigned short>> keys;
        Values values;
        Occurrences<unsigned short> occurrences;
        for (auto const pos : tree_.valuesOf(tree_.nodes()[node])) {
            auto const* const value = image_.value(pos);
            keys.push_back(occurrences.next(value->key));
            values.emplace(keys.back(), value);
        }
        return {std::move(keys), std::move(values)};
    }

private:
    Image const& image_;
    PointTree tree_;
    std::vector<Occurrence<long long>> ids_; // by node
    std::map<Occurrence<long long>, std::uint32_t> nodeOf_;
};

class Comparison {
public:
    Comparison(Image const& before, Image const& after) : before_(before), after_(after) {
        compareRoots(before, after);
        comparePoints();
    }

    std::vector<Difference> take() { return std::move(found_); }

private:
    void compareRoots(Image const& before, Image const& after) {
        svid_ = shm::ROOT_SVID;
        auto const& old = before.root();
        auto const& now = after.root();
        if (before.isActive() != after.isActive()) {
            add(DifferenceKind::Active, before.isActive(), after.isActive());
        } else {
            addIfChanged(DifferenceKind::Version, std::uint64_t{old.version}, std::uint64_t{now.version});
        }
        addIfChanged(DifferenceKind::GlobalState, old.state, now.state);
    }

    void comparePoints() {
        // The removed points behind each node of the later tree, and those before all of them.
        std::vector<std::uint32_t> leading;
        std::vector<std::vector<std::uint32_t>> removedBehind(after_.count());
        auto* behind = &leading;
        for (std::uint32_t node = 0; node < before_.count(); ++node) {
            if (auto const kept = after_.counterpart(before_, node); kept != NO_NODE) {
                behind = &removedBehind[kept];
            } else {
                behind->push_back(node);
            }
        }
        addRemoved(leading);
        for (std::uint32_t node = 0; node < after_.count(); ++node) {
            setPoint(after_.point(node).guid);
            if (auto const old = before_.counterpart(after_, node); old != NO_NODE) {
                comparePoint(old, node);
            } else {
                add(DifferenceKind::PointAdded, {}, std::uint64_t{after_.slot(node)});
            }
            addRemoved(removedBehind[node]);
        }
    }

    void addRemoved(std::vector<std::uint32_t> const& nodes) {
        for (auto const node : nodes) {
            setPoint(before_.point(node).guid);
            add(DifferenceKind::PointRemoved, std::uint64_t{before_.slot(node)}, {});
        }
    }

    void comparePoint(std::uint32_t old, std::uint32_t now) {
        auto const& before = before_.point(old);
        auto const& after = after_.point(now);
        addIfChanged(DifferenceKind::PointParent, before_.parentPath(old), after_.parentPath(now));
        addIfChanged(DifferenceKind::PointSlot, std::uint64_t{before_.slot(old)},
                     std::uint64_t{after_.slot(now)});
        addIfChanged(DifferenceKind::PointType, std::uint64_t{before.type}, std::uint64_t{after.type});
        addIfChanged(DifferenceKind::PointState, before.state, after.state);
        compareValues(old, now);
    }

    void compareValues(std::uint32_t old, std::uint32_t now) {
        auto const [oldKeys, oldValues] = before_.values(old);
        auto const [keys, values] = after_.values(now);
        for (auto const& key : keys) {
            key_ = key.first;
            auto const& value = *values.at(key);
            auto const former = oldValues.find(key);
            if (former == oldValues.end()) {
                add(DifferenceKind::KeyAdded, {}, value.value);
                continue;
            }
            addIfChanged(DifferenceKind::ValueState, former->second->state, value.state);
            if (!hasSameBits(former->second->value, value.value)) {
                add(DifferenceKind::ValueNumber, former->second->value, value.value);
            }
        }
        for (auto const& key : oldKeys) {
            if (values.count(key) == 0) {
                key_ = key.first;
                add(DifferenceKind::KeyRemoved, oldValues.at(key)->value, {});
            }
        }
        key_.reset();
    }

    void setPoint(long long svid) {
        svid_ = svid;
        path_ = pointPath(svid);
    }

    template <typename Fact>
    void addIfChanged(DifferenceKind kind, Fact const& before, Fact const& after) {
        if (before != after) {
            add(kind, before, after);
        }
    }

    void add(DifferenceKind kind, DifferenceSide before, DifferenceSide after) {
        found_.push_back({kind, svid_, path_, key_, std::move(before), std::move(after)});
    }

    Side before_;
    Side after_;
    long long svid_ = 0; // with the next two: what is being compared
    std::string path_;
    std::optional<unsigned short> key_;
    std::vector<Difference> found_;
};

} // namespace

char const* differenceName(DifferenceKind kind) {
    return kindNames.at(static_cast<std::size_t>(kind));
}

std::vector<Difference> differences(Image const& before, Image const& after) {
    return Comparison(before, after).take();
}

} // namespace qel::inspect
