// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// LMDB.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"

#include <cstddef>
#include <memory>

// The names that lmdb.h declares.
struct MDB_env;
struct MDB_txn;
struct MDB_cursor;

namespace bench {

/// An environment in /dev/shm with one database, values and points by sensor id. Each update is a transaction, each
/// read takes the newest snapshot; nothing is synced.
struct Lmdb : Locking {
    static constexpr char name[] = "LMDB";

    using Input = Plan;

    /// The environment; a process must not open it twice.
    class Environment;

    class Writer {
    public:
        Writer();
        ~Writer();
        Writer(Writer const&) = delete;
        Writer& operator=(Writer const&) = delete;

        void open();
        void build(Plan const& plan);
        bool update(Access const& access, Sample const& sample);
        std::size_t bytes() const;

    private:
        int tryUpdate(Access const& access, Sample const& sample);

        std::shared_ptr<Environment> environment_;
    };

    class Reader {
    public:
        explicit Reader(Plan const& plan);
        ~Reader();
        Reader(Reader const&) = delete;
        Reader& operator=(Reader const&) = delete;

        bool find(Access const& access);
        double fetch(Access const& access);
        double sumOfPoint(Access const& access);
        double sumOfAll();

    private:
        double sum(long long first, long long last);

        std::shared_ptr<Environment> environment_;
        MDB_txn* transaction_ = nullptr;
        MDB_cursor* cursor_ = nullptr;
    };
};

} // namespace bench
