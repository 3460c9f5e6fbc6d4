// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/Sqlite.h"

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

constexpr char path[] = "/dev/shm/bench-sqlite";

void check(sqlite3* database, int status) {
    if (status != SQLITE_OK && status != SQLITE_DONE && status != SQLITE_ROW) {
        throw std::runtime_error(sqlite3_errmsg(database));
    }
}

void execute(Sqlite::Database const& database, char const* sql) {
    check(database.get(), sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr));
}

Sqlite::Database openDatabase() {
    constexpr int patience = 10000; // ms
    sqlite3* database = nullptr;
    int const status = sqlite3_open(path, &database);
    Sqlite::Database owner(database);
    check(database, status);
    sqlite3_busy_timeout(database, patience);
    execute(owner, "PRAGMA journal_mode=WAL; PRAGMA synchronous=OFF");
    return owner;
}

Sqlite::Statement prepare(Sqlite::Database const& database, char const* sql) {
    sqlite3_stmt* statement = nullptr;
    check(database.get(),
          sqlite3_prepare_v3(database.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr));
    return Sqlite::Statement(statement);
}

void run(sqlite3_stmt* statement) {
    check(sqlite3_db_handle(statement), sqlite3_step(statement));
    sqlite3_reset(statement);
}

void insert(sqlite3_stmt* statement, long long svid, eStatus_Bits state) {
    sqlite3_bind_int64(statement, 1, svid);
    sqlite3_bind_int(statement, 2, state);
    run(statement);
}

} // namespace

void Sqlite::Close::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

void Sqlite::Close::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Sqlite::Writer::~Writer() {
    close();
}

void Sqlite::Writer::close() {
    update_.reset();
    database_.reset();
    for (char const* const suffix : {"", "-wal", "-shm"}) {
        std::filesystem::remove(std::string(path) + suffix);
    }
}

void Sqlite::Writer::open() {
    close();
    database_ = openDatabase();
    execute(database_,
            "CREATE TABLE points (svid INTEGER PRIMARY KEY, at INTEGER, state INTEGER);"
            "CREATE TABLE vals (svid INTEGER PRIMARY KEY, number REAL, at INTEGER, state INTEGER)");
}

void Sqlite::Writer::build(Plan const& plan) {
    auto const point = prepare(database_, "INSERT INTO points VALUES (?1, 0, ?2)");
    auto const value = prepare(database_, "INSERT INTO vals VALUES (?1, 0.0, 0, ?2)");
    execute(database_, "BEGIN");
    for (auto const& planned : plan.points()) {
        insert(point.get(), planned.svid, eStatus_On);
        for (auto const key : valueKeys) {
            insert(value.get(), planned.svid | key, eStatus_ExpectedValue);
        }
    }
    execute(database_, "COMMIT");
    update_ = prepare(database_, "UPDATE vals SET number = ?2, at = ?3, state = ?4 WHERE svid = ?1");
}

bool Sqlite::Writer::update(Access const& access, Sample const& sample) {
    auto* const statement = update_.get();
    sqlite3_bind_int64(statement, 1, access.svid);
    sqlite3_bind_double(statement, 2, sample.number);
    sqlite3_bind_int64(statement, 3, static_cast<sqlite3_int64>(sample.at));
    sqlite3_bind_int(statement, 4, sample.state);
    run(statement);
    return sqlite3_changes(database_.get()) == 1;
}

std::size_t Sqlite::Writer::bytes() const {
    auto const pages =
        prepare(database_, "SELECT page_count * page_size FROM pragma_page_count, pragma_page_size");
    check(database_.get(), sqlite3_step(pages.get()));
    return static_cast<std::size_t>(sqlite3_column_int64(pages.get(), 0));
}

Sqlite::Reader::Reader(Plan const& /*plan*/)
    : database_(openDatabase()),
      find_(prepare(database_, "SELECT state FROM points WHERE svid = ?1")),
      fetch_(prepare(database_, "SELECT number FROM vals WHERE svid = ?1")),
      range_(prepare(database_, "SELECT number FROM vals WHERE svid BETWEEN ?1 AND ?2")),
      all_(prepare(database_, "SELECT number FROM vals")) {}

bool Sqlite::Reader::find(Access const& access) {
    sqlite3_bind_int64(find_.get(), 1, pointOf(access.svid));
    bool const found = sqlite3_step(find_.get()) == SQLITE_ROW;
    sqlite3_reset(find_.get());
    return found;
}

namespace {

double sumOfRows(sqlite3_stmt* statement) {
    double sum = 0;
    auto status = sqlite3_step(statement);
    for (; status == SQLITE_ROW; status = sqlite3_step(statement)) {
        sum += sqlite3_column_double(statement, 0);
    }
    check(sqlite3_db_handle(statement), status);
    sqlite3_reset(statement);
    return sum;
}

} // namespace

double Sqlite::Reader::fetch(Access const& access) {
    sqlite3_bind_int64(fetch_.get(), 1, access.svid);
    return sumOfRows(fetch_.get());
}

double Sqlite::Reader::sumOfPoint(Access const& access) {
    auto const point = pointOf(access.svid);
    sqlite3_bind_int64(range_.get(), 1, point);
    sqlite3_bind_int64(range_.get(), 2, point | keyMask);
    return sumOfRows(range_.get());
}

double Sqlite::Reader::sumOfAll() {
    return sumOfRows(all_.get());
}

} // namespace bench
