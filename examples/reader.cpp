// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A reading process: waits for the unit, looks up one socket, lists all points, then follows a value.
//
// usage: reader [--wait SECONDS] [--lines N]
//
//   --wait SECONDS  how long to wait for the unit, 1 to 600; 60 by default
//   --lines N       end after N lines of the followed value; by default SIGINT or SIGTERM ends the process
//
// Exit status: 0 at the end, 1 if there is no unit within the time limit, 2 for wrong usage.

#include "domain/SensorIdentifier.h"
#include "domain/eStatus_Bits.h"
#include "format/Names.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"
#include "reader/BaseQelShmVisitor.h"
#include "reader/QelSharedMemoryFollower.h"
#include "reader/QelSharedMemoryReader.h"
#include "region/Exceptions.h"

#include <getopt.h>
#include <gio/gio.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

namespace {

constexpr long long socket1 = 0x0100010101010000; // device 1, inlet 1, phase 1, circuit 1, socket 1

// [why]
// Whether somebody serves the hardware manager's interface.
bool hasHardwareManager() {
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    if (bus == nullptr) {
        return false;
    }
    GVariant* const reply = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        g_variant_new("(s)", "org.qel.HardwareManager"), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr);
    gboolean isOwned = FALSE;
    if (reply != nullptr) {
        g_variant_get(reply, "(b)", &isOwned);
        g_variant_unref(reply);
    }
    g_object_unref(bus);
    return isOwned != FALSE;
}

// Why a reader has found nothing within its time limit.
std::string whyNothing(shm::QelSharedMemoryReader const& reader) {
    if (!hasHardwareManager()) {
        return "no hardware manager: nobody owns org.qel.HardwareManager on the system bus";
    }
    if (!reader.root() && reader.condition(shm::ANY_AGE) == shm::QelShmCondition::Gone) {
        return "no region: there is no /dev/shm/QelSharedMemory; does the writing process run?";
    }
    return "the region is not ready: its writing process has not activated it yet, or was killed";
}
// [/why]

// Waits for the unit and shows one socket. Throws if there is no unit.
void showSocket(unsigned int seconds) {
    // [lookup]
    shm::QelSharedMemoryReader reader(seconds, true); // returns once the unit is ready, or the time is over
    if (reader.condition(shm::ANY_AGE) != shm::QelShmCondition::Active) {
        throw std::runtime_error(whyNothing(reader));
    }
    if (auto const point = reader.mpnt(socket1, false)) {
        for (auto const& value : reader.mvs((*point)->mvs)) {
            std::cout << "socket 1: " << shm::keyName(value->key) << ' ' << tav::ValueFormatter::str(value)
                      << '\n';
        }
    } else {
        std::cout << "socket 1: not in this unit\n";
    }
    // [/lookup]
}

// [visitor]
// Prints each point with its values.
class Lister : public shm::BaseQelShmVisitor {
public:
    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        std::cout << std::string(std::size_t{2} * depth, ' ') << SensorIdentifier::explain(point->guid)
                  << '\n';
    }

    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        std::cout << std::string(std::size_t{2} * (depth + 1), ' ') << shm::keyName(value->key) << ' '
                  << tav::ValueFormatter::str(value) << '\n';
    }
};

void listPoints(shm::QelSharedMemoryReader& reader) {
    std::cout << "structure:\n";
    reader.syncPositions(
        false); // updates the index; modifications() is 0 again, unless a change arrived meanwhile
    reader.visitor(std::make_unique<Lister>());
    reader.visit();
}
// [/visitor]

volatile std::sig_atomic_t isOver = 0;

// By default GLib ends the process by SIGTERM when the bus ends. The process has one connection at a time.
void outliveTheBus() {
    if (GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)) {
        g_dbus_connection_set_exit_on_close(bus, FALSE);
        g_object_unref(bus);
    }
}

// [follow]
// Runs the main context of this thread: delivers shmStructureChanged, and that the bus has ended.
void receiveSignals() {
    outliveTheBus(); // each time, since the follower may have made another connection
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

// Lists the points at first, and after each change of the structure.
void listAnew(shm::QelSharedMemoryReader* reader, bool& isListed) {
    if (reader != nullptr && (!isListed || reader->modifications() != 0)) {
        listPoints(*reader);
        isListed = true;
    }
}

// Prints the active power of socket 1 whenever it was delivered anew, also after the writing process was restarted.
void follow(unsigned int seconds, unsigned long lines) {
    bool isListed = false;
    auto const voided = [&](shm::QelShmCondition now) {
        std::cout << "unit: " << now << "; handles are void\n"; // "gone", "silent", "inactive", "replaced"
        isListed = false;
    };
    // [kept]
    shm::QelSharedMemoryFollower unit(seconds, std::chrono::seconds(10), voided); // current: at most 10 s old
    shm::QelShmKeptMVal power(socket1 | shm::key::activePower); // looked up once, read again in nanoseconds
    std::uint64_t last = 0;
    while (isOver == 0 && lines > 0) {
        receiveSignals();
        listAnew(unit.reader(), isListed);   // null while there are no current values
        auto const value = unit.mval(power); // null then, and while the unit has no such value
        if (value && value->at != last) {
            last = value->at;
            --lines;
            std::cout << "socket 1: " << tav::ValueFormatter::str(value)
                      << (value->state == eStatus_NoError ? "" : ", outside its limits") << '\n';
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    // [/kept]
}
// [/follow]

struct Options {
    unsigned int seconds = 60;
    unsigned long lines = std::numeric_limits<unsigned long>::max();
};

// The whole text as a number from 1 to the greatest one; nothing for other texts.
template <typename Number>
std::optional<Number> numberIn(std::string_view text, Number greatest) {
    Number number = 0;
    auto const* const end = text.data() + text.size();
    auto const read = std::from_chars(text.data(), end, number);
    bool const isWhole = read.ec == std::errc() && read.ptr == end;
    return isWhole && number >= 1 && number <= greatest ? std::optional(number) : std::nullopt;
}

std::optional<Options> optionsIn(int argc, char** argv) {
    static option const known[] = {{"wait", required_argument, nullptr, 'w'},
                                   {"lines", required_argument, nullptr, 'l'},
                                   {nullptr, 0, nullptr, 0}};
    constexpr unsigned int longestWait = shm::IQelShmInitCallback::MAX_WAIT;
    Options options;
    for (int choice = 0; (choice = getopt_long(argc, argv, "", known, nullptr)) != -1;) {
        if (choice == 'w') {
            auto const seconds = numberIn(optarg, longestWait);
            if (!seconds) {
                return std::nullopt;
            }
            options.seconds = *seconds;
        } else if (choice == 'l') {
            auto const lines = numberIn(optarg, options.lines);
            if (!lines) {
                return std::nullopt;
            }
            options.lines = *lines;
        } else {
            return std::nullopt;
        }
    }
    return optind == argc ? std::optional(options) : std::nullopt;
}

int run(int argc, char** argv) {
    auto const options = optionsIn(argc, argv);
    if (!options) {
        std::cerr << "usage: reader [--wait SECONDS (1 to 600)] [--lines N]\n";
        return 2;
    }
    // The thread that makes a reader must run its thread-default main context, here the global one: see follow().
    showSocket(options->seconds);
    for (int const number : {SIGINT, SIGTERM}) {
        static_cast<void>(std::signal(number, [](int) { isOver = 1; }));
    }
    follow(options->seconds, options->lines);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::cout << std::unitbuf; // each line at once, also into a pipe
    try {
        return run(argc, argv);
    } catch (ex::TAVSimpleException const& error) {
        std::cerr << "reader: no system bus: " << error.what() << '\n';
        return 1;
    } catch (std::exception const& error) {
        std::cerr << "reader: " << error.what() << '\n';
        return 1;
    }
}
