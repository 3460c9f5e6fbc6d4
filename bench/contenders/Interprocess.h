// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Boost.Interprocess containers in a managed shared-memory segment.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"
#include "domain/MeasureValue.h"

#include <boost/functional/hash.hpp>
#include <boost/interprocess/allocators/allocator.hpp>
#include <boost/interprocess/containers/map.hpp>
#include <boost/interprocess/managed_shared_memory.hpp>
#include <boost/unordered_map.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace bench {

namespace interprocess {

namespace ipc = boost::interprocess;

template <typename Entry>
using Allocator = ipc::allocator<Entry, ipc::managed_shared_memory::segment_manager>;

using Entry = std::pair<long long const, Sample>;

/// The ordered map, and what is said differently for the hash.
struct Map {
    static constexpr char name[] = "Boost.Interprocess map";
    static constexpr char object[] = "bench-interprocess-map";
    using Container = ipc::map<long long, Sample, std::less<>, Allocator<Entry>>;

    static Container* construct(ipc::managed_shared_memory& segment, char const* what,
                                std::size_t /*entries*/) {
        return segment.construct<Container>(what)(std::less<>(),
                                                  Allocator<Entry>(segment.get_segment_manager()));
    }
};

struct Hash {
    static constexpr char name[] = "Boost.Interprocess hash";
    static constexpr char object[] = "bench-interprocess-hash";
    using Container =
        boost::unordered_map<long long, Sample, boost::hash<long long>, std::equal_to<>, Allocator<Entry>>;

    static Container* construct(ipc::managed_shared_memory& segment, char const* what, std::size_t entries) {
        return segment.construct<Container>(what)(entries, boost::hash<long long>(), std::equal_to<>(),
                                                  Allocator<Entry>(segment.get_segment_manager()));
    }
};

} // namespace interprocess

/// Values and points, each in a container by sensor id. Nothing is locked: the structure stays as it was built, and
/// the fields of a value are stored in place.
template <typename Kind>
struct Interprocess : InProcess {
    static constexpr auto& name = Kind::name;

    using Input = Plan;

    class Writer {
    public:
        Writer() = default;
        ~Writer() {
            segment_.reset();
            interprocess::ipc::shared_memory_object::remove(Kind::object);
        }
        Writer(Writer const&) = delete;
        Writer& operator=(Writer const&) = delete;

        void open() {
            constexpr std::size_t size = std::size_t{4} << 20U;
            interprocess::ipc::shared_memory_object::remove(Kind::object);
            segment_.emplace(interprocess::ipc::create_only, Kind::object, size);
        }

        void build(Plan const& plan) {
            auto* const points = Kind::construct(*segment_, "points", plan.points().size());
            values_ = Kind::construct(*segment_, "values", plan.points().size() * valueKeys.size());
            for (auto const& point : plan.points()) {
                points->emplace(point.svid, Sample{0, 0, eStatus_On});
                for (auto const key : valueKeys) {
                    values_->emplace(point.svid | key, Sample{0, 0, eStatus_ExpectedValue});
                }
            }
        }

        bool update(Access const& access, Sample const& sample) {
            auto const found = values_->find(access.svid);
            if (found == values_->end()) {
                return false;
            }
            found->second = sample;
            return true;
        }

        std::size_t bytes() const { return segment_->get_size() - segment_->get_free_memory(); }

    private:
        std::optional<interprocess::ipc::managed_shared_memory> segment_;
        typename Kind::Container* values_ = nullptr;
    };

    class Reader {
    public:
        explicit Reader(Plan const& /*plan*/)
            : segment_(interprocess::ipc::open_only, Kind::object),
              points_(segment_.find<typename Kind::Container>("points").first),
              values_(segment_.find<typename Kind::Container>("values").first) {}

        Sample const* find(Access const& access) const {
            auto const found = points_->find(pointOf(access.svid));
            return found == points_->end() ? nullptr : &found->second;
        }

        double fetch(Access const& access) const {
            auto const found = values_->find(access.svid);
            return found == values_->end() ? 0 : *const_cast<double const volatile*>(&found->second.number);
        }

        /// For the ordered map only: the ids of a point's values follow each other.
        double sumOfPoint(Access const& access) const {
            auto const point = pointOf(access.svid);
            double sum = 0;
            for (auto value = values_->lower_bound(point);
                 value != values_->end() && pointOf(value->first) == point; ++value) {
                sum += value->second.number;
            }
            return sum;
        }

        double sumOfAll() const {
            double sum = 0;
            for (auto const& value : *values_) {
                sum += value.second.number;
            }
            return sum;
        }

    private:
        interprocess::ipc::managed_shared_memory segment_;
        typename Kind::Container const* points_;
        typename Kind::Container const* values_;
    };
};

using InterprocessMap = Interprocess<interprocess::Map>;
using InterprocessHash = Interprocess<interprocess::Hash>;

/// The hash where each sample comes as the heap value that the library takes.
struct InterprocessHashHeapValue : InterprocessHash {
    static constexpr char name[] = "Boost.Interprocess hash, heap value";

    class Writer : public InterprocessHash::Writer {
    public:
        bool update(Access const& access, Sample const& sample) {
            return take(access,
                        std::make_unique<measval::MeasureValue>(sample.number, sample.at, sample.state));
        }

    private:
        [[gnu::noinline]] // as the library's is a call
        bool
        take(Access const& access, std::unique_ptr<measval::MeasureValue> value) {
            return InterprocessHash::Writer::update(
                access, {value->toDouble().value, value->timestamp(), value->state()});
        }
    };
};

} // namespace bench
