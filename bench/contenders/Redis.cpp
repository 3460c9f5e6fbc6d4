// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/Redis.h"

#include <hiredis/hiredis.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

namespace bench {

namespace {

constexpr char socketPath[] = "/dev/shm/bench-redis";

struct FreeReply {
    void operator()(redisReply* reply) const { freeReplyObject(reply); }
};
using Reply = std::unique_ptr<redisReply, FreeReply>;

Redis::Connection connect() {
    constexpr int attempts = 1000;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        Redis::Connection connection(redisConnectUnix(socketPath));
        if (connection && connection->err == 0) {
            return connection;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    throw std::runtime_error("the Redis server does not answer");
}

Reply checked(void* reply) {
    Reply owner(static_cast<redisReply*>(reply));
    if (!owner || owner->type == REDIS_REPLY_ERROR) {
        throw std::runtime_error(owner ? owner->str : "the Redis server has gone");
    }
    return owner;
}

template <std::size_t Count>
struct Command {
    std::array<char const*, Count> words;
    std::array<std::size_t, Count> lengths;

    Reply run(redisContext* connection) {
        return checked(redisCommandArgv(connection, Count, words.data(), lengths.data()));
    }

    void append(redisContext* connection) {
        redisAppendCommandArgv(connection, Count, words.data(), lengths.data());
    }
};

/// Ids and samples travel as their bytes.
template <typename Item>
char const* bytesOf(Item const& item) {
    return reinterpret_cast<char const*>(&item);
}

Command<4> store(long long const& point, std::uint16_t const& key, Sample const& sample) {
    return {{"HSET", bytesOf(point), bytesOf(key), bytesOf(sample)},
            {4, sizeof point, sizeof key, sizeof sample}};
}

Command<2> list(long long const& point) {
    return {{"HGETALL", bytesOf(point)}, {7, sizeof point}};
}

double numberIn(redisReply const& reply) {
    Sample sample{};
    if (reply.type == REDIS_REPLY_STRING && reply.len == sizeof sample) {
        std::memcpy(&sample, reply.str, sizeof sample);
    }
    return sample.number;
}

Reply nextReply(redisContext* connection) {
    void* reply = nullptr;
    redisGetReply(connection, &reply);
    return checked(reply);
}

/// Fields and their samples take turns.
double sumOf(redisReply const& fields) {
    double sum = 0;
    for (std::size_t sample = 1; sample < fields.elements; sample += 2) {
        sum += numberIn(*fields.element[sample]);
    }
    return sum;
}

std::size_t usedMemory(redisContext* connection) {
    auto const reply = checked(redisCommand(connection, "INFO memory"));
    std::string const text(reply->str, reply->len);
    std::string const label = "used_memory:";
    return std::stoul(text.substr(text.find(label) + label.size()));
}

} // namespace

void Redis::Close::operator()(redisContext* connection) const {
    redisFree(connection);
}

void Redis::Writer::open() {
    connection_.reset();
    server_.reset();
    unlink(socketPath); // so that nobody meets a server of before
    server_.emplace(std::vector<std::string>{"redis-server", "--port", "0", "--unixsocket", socketPath,
                                             "--save", "", "--appendonly", "no"});
    connection_ = connect();
    emptyBytes_ = usedMemory(connection_.get());
}

void Redis::Writer::build(Plan const& plan) {
    auto* const connection = connection_.get();
    for (auto const& point : plan.points()) {
        for (auto const key : valueKeys) {
            store(point.svid, key, {0, 0, eStatus_ExpectedValue}).append(connection);
        }
    }
    for (std::size_t value = 0; value < plan.points().size() * valueKeys.size(); ++value) {
        nextReply(connection);
    }
}

bool Redis::Writer::update(Access const& access, Sample const& sample) {
    auto const point = pointOf(access.svid);
    auto const key = keyOf(access.svid);
    return store(point, key, sample).run(connection_.get())->type == REDIS_REPLY_INTEGER;
}

std::size_t Redis::Writer::bytes() const {
    return usedMemory(connection_.get()) - emptyBytes_;
}

Redis::Reader::Reader(Plan plan) : connection_(connect()), plan_(std::move(plan)) {}

bool Redis::Reader::find(Access const& access) {
    auto const point = pointOf(access.svid);
    Command<2> exists{{"EXISTS", bytesOf(point)}, {6, sizeof point}};
    return exists.run(connection_.get())->integer == 1;
}

double Redis::Reader::fetch(Access const& access) {
    auto const point = pointOf(access.svid);
    auto const key = keyOf(access.svid);
    Command<3> get{{"HGET", bytesOf(point), bytesOf(key)}, {4, sizeof point, sizeof key}};
    return numberIn(*get.run(connection_.get()));
}

double Redis::Reader::sumOfPoint(Access const& access) {
    auto const point = pointOf(access.svid);
    return sumOf(*list(point).run(connection_.get()));
}

double Redis::Reader::sumOfAll() {
    for (auto const& point : plan_.points()) {
        list(point.svid).append(connection_.get());
    }
    double sum = 0;
    for (std::size_t point = 0; point < plan_.points().size(); ++point) {
        sum += sumOf(*nextReply(connection_.get()));
    }
    return sum;
}

} // namespace bench
