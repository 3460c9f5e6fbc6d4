// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The floor: plain loads and stores at known positions of a mapped array.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"
#include "bench/support/SharedObject.h"
#include "region/QelShmRecords.h"
#include "region/RegionFields.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace bench {

/// What no contender can beat: nothing is looked up and nothing is checked, each slot is known beforehand. The array
/// is a region of the library's layout.
struct Floor : InProcess {
    static constexpr char name[] = "floor";

    static constexpr char objectName[] = "bench-floor";

    /// The slots as they are to be stored.
    class Input {
    public:
        explicit Input(Plan const& plan);
        std::vector<shm::record::QelShmMP> const& points() const { return points_; }

    private:
        std::vector<shm::record::QelShmMP> points_;
    };

    class Writer {
    public:
        void open();
        void build(Input const& input);

        bool update(Access const& access, Sample const& sample) {
            auto& slot = region_->values[access.value];
            shm::storeField(slot.at, sample.at);
            shm::storeField(slot.state, sample.state);
            shm::storeField(slot.value, sample.number);
            return true;
        }

        void propagate();
        std::size_t bytes() const { return shm::REGION_SIZE; }

    private:
        std::optional<SharedObject> object_;
        shm::record::Region* region_ = nullptr;
        std::uint32_t points_ = 0;
    };

    class Reader {
    public:
        explicit Reader(Plan const& plan);

        shm::record::QelShmMP const* find(Access const& access) const {
            return &region_->points[access.point];
        }

        double fetch(Access const& access) const {
            return *const_cast<double const volatile*>(&region_->values[access.value].value);
        }

        double sumOfPoint(Access const& access) const { return sum(access.value, valueKeys.size()); }
        double sumOfAll() const { return sum(0, values_); }

        /// Notes the slot of each point where it is known to be looked for.
        void rebuildIndex() {
            for (std::uint32_t pos = 0; pos < positions_.size(); ++pos) {
                positions_[pos] = region_->points[pos].pos;
            }
        }

    private:
        double sum(std::uint32_t first, std::size_t count) const {
            double total = 0;
            for (auto slot = first; slot < first + count; ++slot) {
                total += *const_cast<double const volatile*>(&region_->values[slot].value);
            }
            return total;
        }

        SharedObject object_;
        shm::record::Region const* region_;
        std::size_t values_;
        std::vector<std::uint32_t> positions_;
    };
};

} // namespace bench
