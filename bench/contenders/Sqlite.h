// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// SQLite.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"

#include <cstddef>
#include <memory>

// The names that sqlite3.h declares.
struct sqlite3;
struct sqlite3_stmt;

namespace bench {

/// A database file in /dev/shm with write-ahead log and prepared statements; each update is a transaction, nothing is
/// synced.
struct Sqlite : Locking {
    static constexpr char name[] = "SQLite";

    using Input = Plan;

    struct Close {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Database = std::unique_ptr<sqlite3, Close>;
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    class Writer {
    public:
        Writer() = default;
        ~Writer();
        Writer(Writer const&) = delete;
        Writer& operator=(Writer const&) = delete;

        void open();
        void build(Plan const& plan);
        bool update(Access const& access, Sample const& sample);
        std::size_t bytes() const;

    private:
        void close();

        Database database_;
        Statement update_;
    };

    class Reader {
    public:
        explicit Reader(Plan const& plan);

        bool find(Access const& access);
        double fetch(Access const& access);
        double sumOfPoint(Access const& access);
        double sumOfAll();

    private:
        Database database_;
        Statement find_;
        Statement fetch_;
        Statement range_;
        Statement all_;
    };
};

} // namespace bench
