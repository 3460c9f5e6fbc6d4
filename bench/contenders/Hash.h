// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// An open-addressing hash in front of the floor.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/contenders/Floor.h"
#include "bench/support/Plan.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

/// Slot by sensor id: linear probing in a table at most half full.
class SlotTable {
public:
    explicit SlotTable(std::size_t entries) {
        while (rows_.size() < 2 * entries) {
            rows_.resize(rows_.size() * 2);
            --shift_;
        }
    }

    void insert(long long svid, std::uint32_t slot) {
        auto row = home(svid);
        while (rows_[row].svid != free && rows_[row].svid != svid) {
            row = (row + 1) & (rows_.size() - 1);
        }
        rows_[row] = {svid, slot};
    }

    /// NO_POSITION when there is no such id.
    std::uint32_t find(long long svid) const {
        auto row = home(svid);
        while (rows_[row].svid != svid && rows_[row].svid != free) {
            row = (row + 1) & (rows_.size() - 1);
        }
        return rows_[row].slot;
    }

    void clear() { rows_.assign(rows_.size(), Row{}); }

private:
    static constexpr long long free = 0;

    struct Row {
        long long svid = free;
        std::uint32_t slot = shm::NO_POSITION;
    };

    std::size_t home(long long svid) const {
        constexpr std::uint64_t golden = 0x9E3779B97F4A7C15;
        return static_cast<std::size_t>((static_cast<std::uint64_t>(svid) * golden) >> shift_);
    }

    std::vector<Row> rows_ = std::vector<Row>(2);
    unsigned int shift_ = 63;
};

/// The least a program pays that is handed sensor ids: one table over the values, one over the points.
struct Hash : InProcess {
    static constexpr char name[] = "open-addressing hash";

    using Input = Floor::Input;

    class Writer {
    public:
        void open() { floor_.open(); }

        void build(Input const& input) {
            floor_.build(input);
            for (auto const& point : input.points()) {
                for (std::size_t key = 0; key < valueKeys.size(); ++key) {
                    slots_.insert(point.guid | valueKeys.at(key), valueSlot(point.pos, key));
                }
            }
        }

        bool update(Access const& access, Sample const& sample) {
            return floor_.update({access.svid, 0, slots_.find(access.svid), access.number}, sample);
        }

        std::size_t bytes() const { return floor_.bytes(); }

    private:
        Floor::Writer floor_;
        SlotTable slots_{shm::MV_COUNT};
    };

    class Reader {
    public:
        explicit Reader(Plan const& plan)
            : floor_(plan),
              accesses_(plan.pointAccesses()),
              points_(plan.points().size()),
              values_(plan.points().size() * valueKeys.size()) {
            rebuildIndex();
            for (auto const& access : plan.valueAccesses()) {
                values_.insert(access.svid, access.value);
            }
        }

        shm::record::QelShmMP const* find(Access const& access) const { return floor_.find(at(access)); }
        double fetch(Access const& access) const {
            return floor_.fetch({access.svid, 0, values_.find(access.svid), access.number});
        }
        double sumOfPoint(Access const& access) const { return floor_.sumOfPoint(at(access)); }

        void rebuildIndex() {
            points_.clear();
            for (auto const& access : accesses_) {
                auto const* const point = floor_.find(access);
                points_.insert(point->guid, point->pos);
            }
        }

    private:
        Access at(Access const& access) const {
            auto const point = points_.find(pointOf(access.svid));
            return {access.svid, point, valueSlot(point, 0), access.number};
        }

        Floor::Reader floor_;
        std::vector<Access> accesses_;
        SlotTable points_;
        SlotTable values_;
    };
};

} // namespace bench
