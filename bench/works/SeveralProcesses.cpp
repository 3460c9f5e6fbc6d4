// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/DBus.h"
#include "bench/contenders/Floor.h"
#include "bench/contenders/Hash.h"
#include "bench/contenders/Interprocess.h"
#include "bench/contenders/Library.h"
#include "bench/contenders/Literal.h"
#include "bench/contenders/Lmdb.h"
#include "bench/contenders/Mmv.h"
#include "bench/contenders/Redis.h"
#include "bench/contenders/Sqlite.h"
#include "bench/works/Entries.h"
#include "bench/works/Helper.h"
#include "bench/works/Operations.h"
#include "bench/works/Stamp.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <thread>

namespace bench {

namespace {

// What helpers do.

template <typename Contender>
void scan(Plan const& plan, Control& control) {
    typename Contender::Reader reader(plan);
    repeat(control, [&] { benchmark::DoNotOptimize(reader.sumOfAll()); });
}

template <typename Contender>
void update(Plan const& plan, Control& control) {
    auto const writer = writerOf<Contender>(plan);
    auto const accesses = plan.valueAccesses();
    repeat(control, [&, next = std::size_t{0}]() mutable {
        writer->update(accesses[next], sampleOf(accesses[next]));
        next = next + 1 < accesses.size() ? next + 1 : 0;
    });
}

template <typename Contender>
void watch(Plan const& plan, Control& control) {
    typename Contender::Reader reader(plan);
    auto const access = watched(plan);
    repeat(control, [&, last = reader.fetch(access)]() mutable {
        auto const number = reader.fetch(access);
        if (number != last) {
            control.latency.store(now() - static_cast<std::int64_t>(number), std::memory_order_relaxed);
            last = number;
            control.seen.fetch_add(1, std::memory_order_release);
        }
    });
}

// What is measured beside them.

/// Updates while other processes scan.
template <typename Contender>
class UpdateBesideReaders : public Sweep<WriterSide<Contender>, Update> {
    using Base = Sweep<WriterSide<Contender>, Update>;

public:
    UpdateBesideReaders(Plan const& plan, unsigned int readers) : Base(plan, Contender::roundLimit) {
        for (unsigned int reader = 0; reader < readers; ++reader) {
            scanners_.push_back(std::make_unique<Helper>("scan", Contender::name, plan.shape()));
        }
    }

    void begin(Order const& order) override {
        Base::begin(order);
        for (auto const& scanner : scanners_) {
            scanner->start();
        }
    }

    void end() override {
        for (auto const& scanner : scanners_) {
            scanner->stop();
        }
    }

private:
    std::vector<std::unique_ptr<Helper>> scanners_;
};

/// A helper that writes, and whoever reads its store; one per process while anybody holds it.
template <typename Contender>
class ForeignReaderSide {
public:
    explicit ForeignReaderSide(Plan const& plan) : writer_(writerFor(plan)), reader_(plan) {}
    typename Contender::Reader& operator*() { return reader_; }

protected:
    Helper& writer() { return *writer_; }

private:
    static std::shared_ptr<Helper> writerFor(Plan const& plan) {
        static std::weak_ptr<Helper> known;
        auto writer = known.lock();
        if (!writer) {
            writer = std::make_shared<Helper>("update", Contender::name, plan.shape());
            known = writer;
        }
        return writer;
    }

    std::shared_ptr<Helper> writer_;
    typename Contender::Reader reader_;
};

/// Scans a store whose writer is another process.
/// @tparam busy whether that one updates meanwhile
template <typename Contender, bool busy>
class ScanBesideWriter : public Entry, private ForeignReaderSide<Contender> {
    using Side = ForeignReaderSide<Contender>;

public:
    explicit ScanBesideWriter(Plan const& plan) : Side(plan) {}

    void begin(Order const& order) override {
        expected_ = Visit::expected(order);
        if (busy) {
            Side::writer().start();
        }
    }

    void end() override {
        if (busy) {
            Side::writer().stop();
        }
    }

    double run() override { return Visit::run(**static_cast<Side*>(this)); }
    double expected() const override { return expected_; }
    std::size_t operations() const override { return 1; }

private:
    double expected_ = 0;
};

/// Stores the time as a value and lets a helper tell how long ago that was when it sees it.
template <typename Contender>
class Visible : public Entry {
public:
    explicit Visible(Plan const& plan)
        : access_(watched(plan)),
          writer_(writerOf<Contender>(plan)),
          watcher_("watch", Contender::name, plan.shape()),
          latencies_(Contender::throughServer ? latenciesThroughServer : latenciesInProcess) {}

    void begin(Order const& /*order*/) override { watcher_.start(); }
    void end() override { watcher_.stop(); }

    double run() override {
        for (auto& latency : latencies_) {
            auto const seen = watcher_.control().seen.load();
            storeNow(*writer_, 0);
            watcher_.waitUntilSeen(seen + 1);
            latency = watcher_.control().latency.load();
        }
        mean_ = interquartileMean() * secondsPerNanosecond;
        return 1;
    }

    double expected() const override { return 1; }
    std::size_t operations() const override { return latencies_.size(); }
    double measured() const override { return mean_; }

private:
    /// A value that has to be handed over in memory of its own gets that first.
    template <typename Writer>
    auto storeNow(Writer& writer, int /*preferred*/)
        -> decltype(writer.updateLate(std::declval<Access>(), stamp)) {
        return writer.updateLate(access_, stamp);
    }

    template <typename Writer>
    bool storeNow(Writer& writer, long /*otherwise*/) {
        return writer.update(access_, {stamp(), 0, eStatus_NoError});
    }

    /// Of the middle half of the latencies: as steady as their median, and finer than the clock's steps.
    double interquartileMean() {
        std::sort(latencies_.begin(), latencies_.end());
        auto const quarter = static_cast<std::ptrdiff_t>(latencies_.size() / 4);
        auto const first = latencies_.begin() + quarter;
        auto const last = latencies_.end() - quarter;
        return std::accumulate(first, last, 0.0) / static_cast<double>(last - first);
    }

    static constexpr std::size_t latenciesInProcess = 1001;
    static constexpr std::size_t latenciesThroughServer = 51;
    static constexpr double secondsPerNanosecond = 1e-9;

    Access access_;
    std::shared_ptr<typename Contender::Writer> writer_;
    Helper watcher_;
    std::vector<std::int64_t> latencies_;
    double mean_ = 0;
};

/// As many readers as there are cores beside the writer's, at least one.
unsigned int mostReaders() {
    return std::max(std::thread::hardware_concurrency(), 2U) - 1;
}

template <typename... Contenders>
std::vector<Candidate> updatesBesideReaders() {
    std::vector<Candidate> candidates;
    for (unsigned int readers = 0; readers <= mostReaders(); ++readers) {
        (candidates.push_back(
             candidate<Contenders, UpdateBesideReaders<Contenders>>(std::to_string(readers), readers)),
         ...);
    }
    return candidates;
}

template <typename... Contenders>
std::vector<Candidate> scansBesideWriter() {
    return {candidate<Contenders, ScanBesideWriter<Contenders, false>>("0")...,
            candidate<Contenders, ScanBesideWriter<Contenders, true>>("1")...};
}

template <typename... Contenders>
std::vector<Candidate> visibles() {
    return {candidate<Contenders, Visible<Contenders>>("")...};
}

template <typename... Contenders>
std::vector<HelperRole> rolesOf() {
    std::vector<HelperRole> roles;
    (roles.push_back({"scan", Contenders::name, scan<Contenders>}), ...);
    (roles.push_back({"update", Contenders::name, update<Contenders>}), ...);
    return roles;
}

template <typename... Contenders>
std::vector<HelperRole> watchersOf() {
    return {{"watch", Contenders::name, watch<Contenders>}...};
}

} // namespace

std::vector<HelperRole> helperRoles() {
    auto roles =
        rolesOf<Floor, Library, Literal, InterprocessMap, InterprocessHash, Mmv, Lmdb, Sqlite, Redis>();
    auto const watchers = watchersOf<Floor, Hash, Library, LibraryKept, Literal, InterprocessMap,
                                     InterprocessHash, Mmv, Lmdb, Sqlite, Redis, DBus>();
    roles.insert(roles.end(), watchers.begin(), watchers.end());
    return roles;
}

std::vector<Work> severalProcessesWorks() {
    return {
        {"update beside readers", updatesBesideReaders<Floor, Library, Literal, InterprocessMap,
                                                       InterprocessHash, Mmv, Lmdb, Sqlite, Redis>()},
        {"scan beside a writer", scansBesideWriter<Floor, Library, Literal, InterprocessMap, InterprocessHash,
                                                   Mmv, Lmdb, Sqlite, Redis>()},
        {"visible", visibles<Floor, Hash, Library, LibraryKept, Literal, InterprocessMap, InterprocessHash,
                             Mmv, Lmdb, Sqlite, Redis, DBus>()},
    };
}

} // namespace bench
