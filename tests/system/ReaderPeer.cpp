// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A reading process of the system tests, driven by lines. Its argument is the reader's wait budget in
// seconds.
//
//   mapped               whether the region is mapped, and active
//   wait                 waits until it is active
//   global               the global state's name, as the root prints it
//   text ID KEY          the value as text and its state, "none" without it
//   ids                  ids of all points of the index, ascending
//   tree                 the same with the keys of their values
//   modifications        the modification counter
//   renew                destroys the reader and makes a new one
//   resources            open files, threads and mapped regions of the process
//   settle N             looks up until the counter has been 0 for N milliseconds
//   hammer [FILE]        looks up, visits and scans without pause until the next line arrives; gives what it saw; marks 1 in
//                        the file during each visit, else 0, and counts the visits
//   quit                 clean end
//
// Each command is answered by one line.

#include "format/Print.h"
#include "format/ValueFormatter.h"
#include "reader/BaseQelShmVisitor.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/support/ProcessResources.h"
#include "tests/support/ProgressPage.h"
#include "tests/system/PeerText.h"

#include <glib.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

constexpr std::uint8_t activeVersion = 32;

struct SeenPoint {
    long long svid;
    std::vector<unsigned short> keys;
};

// The points of one visit.
struct Points : shm::IQelVisitorResult {
    std::vector<SeenPoint> seen;
};

class Collector : public shm::BaseQelShmVisitor {
public:
    void onMPnt(shm::QelShmMPnt const& point, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& result) override {
        static_cast<Points&>(*result).seen.push_back({point->guid, {}});
    }
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& result) override {
        static_cast<Points&>(*result).seen.back().keys.push_back(value->key);
    }
};

// "[0x0001,0x0004]"
std::string keyText(std::vector<unsigned short> const& keys) {
    std::ostringstream text;
    text << '[' << std::hex << std::setfill('0');
    char const* separator = "";
    for (auto const key : keys) {
        text << separator << "0x" << std::setw(4) << key;
        separator = ",";
    }
    text << ']';
    return text.str();
}

// Iterates the default main context, where the signals arrive.
class MainContext {
public:
    MainContext()
        : thread_([this] {
              while (!ended_) {
                  g_main_context_iteration(nullptr, TRUE);
              }
          }) {}
    ~MainContext() {
        ended_ = true;
        g_main_context_wakeup(nullptr);
        thread_.join();
    }
    MainContext(MainContext const&) = delete;
    MainContext& operator=(MainContext const&) = delete;

private:
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

bool lineWaits() {
    if (std::cin.rdbuf()->in_avail() > 0) {
        return true;
    }
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) > 0;
}

class ReaderPeer {
public:
    explicit ReaderPeer(unsigned int seconds) : seconds_(seconds) { renew(); }

    std::string answerTo(std::vector<std::string> const& words) {
        auto const& command = words.at(0);
        if (command == "mapped") {
            return !reader_->root() ? "no" : isActive() ? "active" : "inactive";
        }
        if (command == "wait") {
            while (!isActive()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
            return "active";
        }
        if (command == "global") {
            std::ostringstream text;
            text << reader_->root();
            return text.str();
        }
        if (command == "text") {
            return text(idFrom(words.at(1)),
                        static_cast<unsigned short>(std::stoul(words.at(2), nullptr, 0)));
        }
        if (command == "ids") {
            return points(false);
        }
        if (command == "tree") {
            return points(true);
        }
        if (command == "renew") {
            renew();
            return "renewed";
        }
        if (command == "resources") {
            std::ostringstream line;
            line << ownResources();
            return line.str();
        }
        if (command == "modifications") {
            return std::to_string(reader_->modifications());
        }
        if (command == "settle") {
            return settle(std::chrono::milliseconds(std::stoi(words.at(1))));
        }
        if (command == "hammer") {
            return hammer(words.size() > 1 ? std::make_unique<ProgressPage>(words[1]) : nullptr);
        }
        return "unknown command";
    }

private:
    bool isActive() const {
        auto const root = reader_->root();
        return root && __atomic_load_n(&root->version, __ATOMIC_ACQUIRE) == activeVersion;
    }

    std::string text(long long svid, unsigned short key) {
        if (auto const point = reader_->mpnt(svid, false)) {
            for (auto const& value : reader_->mvs((*point)->mvs)) {
                if (value->key == key) {
                    std::ostringstream line;
                    line << tav::ValueFormatter::str(value) << ", " << int{value->state} << ", " << value->at;
                    return line.str();
                }
            }
        }
        return "none";
    }

    std::shared_ptr<Points> visit() {
        auto points = std::make_shared<Points>();
        std::shared_ptr<shm::IQelVisitorResult> result = points;
        reader_->visit(result);
        return points;
    }

    std::vector<SeenPoint> scan() {
        std::vector<SeenPoint> seen;
        for (auto const& point : reader_->points()) {
            seen.push_back({point.svid(), {}});
            for (auto const& value : point.values()) {
                seen.back().keys.push_back(value->key);
            }
        }
        return seen;
    }

    // Every point of the tree that the index finds; an id that the tree shows twice is told, and a scan that shows
    // something else than a visit.
    std::string points(bool withKeys) {
        auto seen = visit()->seen;
        auto const scanned = scan();
        if (!std::equal(seen.begin(), seen.end(), scanned.begin(), scanned.end(),
                        [](auto const& left, auto const& right) {
                            return left.svid == right.svid && left.keys == right.keys;
                        })) {
            return "scanned otherwise";
        }
        std::sort(seen.begin(), seen.end(), [](auto const& left, auto const& right) {
            return static_cast<std::uint64_t>(left.svid) < static_cast<std::uint64_t>(right.svid);
        });
        std::string line = std::to_string(seen.size());
        for (std::size_t i = 0; i < seen.size(); ++i) {
            auto const svid = seen[i].svid;
            if (i > 0 && seen[i - 1].svid == svid) {
                return "twice " + idText(svid);
            }
            auto const point = reader_->mpnt(svid, false);
            if (!point || (*point)->guid != svid) {
                return "not in the index " + idText(svid);
            }
            line += ' ' + idText(svid);
            if (withKeys) {
                line += keyText(seen[i].keys);
            }
        }
        return line;
    }

    void renew() {
        reader_.reset();
        reader_ = std::make_unique<shm::QelSharedMemoryReader>(seconds_, false);
        reader_->visitor(std::make_unique<Collector>());
    }

    std::string settle(std::chrono::milliseconds quiet) {
        auto since = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - since < quiet) {
            if (reader_->modifications() != 0) {
                reader_->syncPositions(false);
                since = std::chrono::steady_clock::now();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return "settled";
    }

    std::string hammer(std::unique_ptr<ProgressPage> const& page) {
        unsigned long visits = 0;
        unsigned long points = 0;
        unsigned long lookups = 0;
        while (!lineWaits()) {
            if (page) {
                page->mark(1);
            }
            auto const seen = visit()->seen;
            if (page) {
                page->mark(0);
                page->count();
            }
            ++visits;
            points += seen.size();
            static_cast<void>(scan());
            for (auto const& point : seen) {
                lookups += reader_->mpnt(point.svid, false) ? 1U : 0U;
            }
        }
        return std::to_string(visits) + ' ' + std::to_string(points) + ' ' + std::to_string(lookups);
    }

    unsigned int seconds_;
    MainContext context_;
    std::unique_ptr<shm::QelSharedMemoryReader> reader_;
};

int run(unsigned int seconds) {
    ReaderPeer peer(seconds);
    serve(peer);
    return 0;
}

} // namespace

} // namespace qel::test

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false); // so that cin knows of lines that were read along with the last one
    try {
        return qel::test::run(argc > 1 ? static_cast<unsigned int>(std::stoul(argv[1])) : 60);
    } catch (std::exception const& failure) {
        std::cerr << "system-reader: " << failure.what() << '\n';
        return 1;
    }
}
