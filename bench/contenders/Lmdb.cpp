// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/Lmdb.h"

#include <endian.h>
#include <lmdb.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>

namespace bench {

namespace {

constexpr char path[] = "/dev/shm/bench-lmdb";

void removeFiles() {
    std::filesystem::remove(path);
    std::filesystem::remove(std::string(path) + "-lock");
}

void check(int status) {
    if (status != 0) {
        throw std::runtime_error(mdb_strerror(status));
    }
}

/// The database orders native numbers of the size of an address; on smaller processors it orders the bytes of a sensor id,
/// highest first.
constexpr bool keysAreNumbers = sizeof(std::size_t) == sizeof(std::uint64_t);
constexpr unsigned int keyFlags = keysAreNumbers ? MDB_INTEGERKEY : 0;

struct Key {
    std::uint64_t bytes;
    MDB_val val() { return {sizeof bytes, &bytes}; }
};

Key keyFor(long long svid) {
    auto const bits = static_cast<std::uint64_t>(svid);
    return {keysAreNumbers ? bits : htobe64(bits)};
}

long long svidIn(MDB_val const& key) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, key.mv_data, sizeof bytes);
    return static_cast<long long>(keysAreNumbers ? bytes : be64toh(bytes));
}

int put(MDB_txn* transaction, MDB_dbi database, long long svid, Sample const& sample) {
    auto key = keyFor(svid);
    auto keyBytes = key.val();
    auto copy = sample;
    MDB_val data{sizeof copy, &copy};
    return mdb_put(transaction, database, &keyBytes, &data, 0);
}

Sample sampleIn(MDB_val const& data) {
    Sample sample; // NOLINT(cppcoreguidelines-pro-type-member-init): copied over
    std::memcpy(&sample, data.mv_data, sizeof sample);
    return sample;
}

} // namespace

class Lmdb::Environment {
public:
    explicit Environment(unsigned int flags) {
        constexpr std::size_t mapSize = std::size_t{64} << 20U;
        constexpr mdb_mode_t mode = 0600;
        check(mdb_env_create(&env_));
        check(mdb_env_set_mapsize(env_, mapSize));
        check(mdb_env_open(env_, path, MDB_NOSUBDIR | MDB_NOSYNC | MDB_WRITEMAP | flags, mode));
        MDB_txn* transaction = nullptr;
        check(mdb_txn_begin(env_, nullptr, 0, &transaction));
        check(mdb_dbi_open(transaction, nullptr, keyFlags, &database_));
        check(mdb_txn_commit(transaction));
    }
    ~Environment() { mdb_env_close(env_); }
    Environment(Environment const&) = delete;
    Environment& operator=(Environment const&) = delete;

    /// The one of this process.
    static std::shared_ptr<Environment> ofProcess() {
        static std::weak_ptr<Environment> known;
        auto environment = known.lock();
        if (!environment) {
            environment = std::make_shared<Environment>(0);
            known = environment;
        }
        return environment;
    }

    MDB_env* env() const { return env_; }
    MDB_dbi database() const { return database_; }

private:
    MDB_env* env_ = nullptr;
    MDB_dbi database_ = 0;
};

Lmdb::Writer::Writer() = default;

Lmdb::Writer::~Writer() {
    environment_.reset();
    removeFiles();
}

void Lmdb::Writer::open() {
    environment_.reset();
    removeFiles();
    environment_ = Environment::ofProcess();
}

void Lmdb::Writer::build(Plan const& plan) {
    MDB_txn* transaction = nullptr;
    check(mdb_txn_begin(environment_->env(), nullptr, 0, &transaction));
    for (auto const& point : plan.points()) {
        check(put(transaction, environment_->database(), point.svid, {0, 0, eStatus_On}));
        for (auto const key : valueKeys) {
            check(
                put(transaction, environment_->database(), point.svid | key, {0, 0, eStatus_ExpectedValue}));
        }
    }
    check(mdb_txn_commit(transaction));
}

bool Lmdb::Writer::update(Access const& access, Sample const& sample) {
    auto status = tryUpdate(access, sample);
    // The pages of old snapshots are free again when the reader that holds the oldest one has moved on.
    for (; status == MDB_MAP_FULL; status = tryUpdate(access, sample)) {
        std::this_thread::yield();
    }
    return status == 0;
}

int Lmdb::Writer::tryUpdate(Access const& access, Sample const& sample) {
    MDB_txn* transaction = nullptr;
    if (int const status = mdb_txn_begin(environment_->env(), nullptr, 0, &transaction)) {
        return status;
    }
    if (int const status = put(transaction, environment_->database(), access.svid, sample)) {
        mdb_txn_abort(transaction);
        return status;
    }
    return mdb_txn_commit(transaction);
}

std::size_t Lmdb::Writer::bytes() const {
    MDB_envinfo info;
    MDB_stat status;
    mdb_env_info(environment_->env(), &info);
    mdb_env_stat(environment_->env(), &status);
    return (info.me_last_pgno + 1) * status.ms_psize;
}

Lmdb::Reader::Reader(Plan const& /*plan*/) : environment_(Environment::ofProcess()) {
    check(mdb_txn_begin(environment_->env(), nullptr, MDB_RDONLY, &transaction_));
    check(mdb_cursor_open(transaction_, environment_->database(), &cursor_));
    mdb_txn_reset(transaction_);
}

Lmdb::Reader::~Reader() {
    mdb_cursor_close(cursor_);
    mdb_txn_abort(transaction_);
}

bool Lmdb::Reader::find(Access const& access) {
    auto key = keyFor(pointOf(access.svid));
    auto keyBytes = key.val();
    MDB_val data{};
    check(mdb_txn_renew(transaction_));
    bool const found = mdb_get(transaction_, environment_->database(), &keyBytes, &data) == 0;
    mdb_txn_reset(transaction_);
    return found;
}

double Lmdb::Reader::fetch(Access const& access) {
    auto key = keyFor(access.svid);
    auto keyBytes = key.val();
    MDB_val data{};
    check(mdb_txn_renew(transaction_));
    bool const found = mdb_get(transaction_, environment_->database(), &keyBytes, &data) == 0;
    auto const number = found ? sampleIn(data).number : 0;
    mdb_txn_reset(transaction_);
    return number;
}

double Lmdb::Reader::sumOfPoint(Access const& access) {
    auto const point = pointOf(access.svid);
    return sum(point | 1, point | keyMask);
}

double Lmdb::Reader::sumOfAll() {
    return sum(0, std::numeric_limits<long long>::max());
}

double Lmdb::Reader::sum(long long first, long long last) {
    auto key = keyFor(first);
    auto keyBytes = key.val();
    MDB_val data{};
    double total = 0;
    check(mdb_txn_renew(transaction_));
    check(mdb_cursor_renew(transaction_, cursor_));
    for (auto status = mdb_cursor_get(cursor_, &keyBytes, &data, MDB_SET_RANGE); status == 0;
         status = mdb_cursor_get(cursor_, &keyBytes, &data, MDB_NEXT)) {
        auto const svid = svidIn(keyBytes);
        if (svid > last) {
            break;
        }
        if (keyOf(svid) != 0) {
            total += sampleIn(data).number;
        }
    }
    mdb_txn_reset(transaction_);
    return total;
}

} // namespace bench
