// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Growth: what a writer and its readers take, by the number of reading processes that scan without pause, and what it
/// takes to open a reader. Needs a hardware manager beside it for the latter.

#include "bench/contenders/Library.h"
#include "bench/programs/Options.h"
#include "bench/programs/Results.h"
#include "bench/support/SharedObject.h"
#include "bench/works/Helper.h"
#include "bench/works/Stamp.h"

#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using bench::Helper;
using Helpers = std::vector<std::unique_ptr<Helper>>;

constexpr std::array<unsigned int, 8> readerCounts{0, 1, 2, 4, 8, 16, 32, 64};

/// The numbers of each figure, in the order of the passes.
using Figures = std::map<std::string, std::vector<double>>;

void scan(bench::Plan const& plan, bench::Control& control) {
    bench::Library::Reader reader(plan);
    double volatile sum = 0;
    repeat(control, [&] { sum = reader.sumOfAll(); });
}

/// Processor time of a clock, in ns.
double timeOn(clockid_t clock) {
    constexpr double nanosecondsPerSecond = 1e9;
    timespec time{};
    if (clock_gettime(clock, &time) != 0) {
        throw std::system_error(errno, std::generic_category(), "clock_gettime");
    }
    return static_cast<double>(time.tv_sec) * nanosecondsPerSecond + static_cast<double>(time.tv_nsec);
}

double processorTimeOf(pid_t process) {
    clockid_t clock{};
    if (int const status = clock_getcpuclockid(process, &clock); status != 0) {
        throw std::system_error(status, std::generic_category(), "clock_getcpuclockid");
    }
    return timeOn(clock);
}

/// A line of a process's smaps_rollup, in bytes.
double memoryOf(pid_t process, std::string_view field) {
    constexpr double kilobyte = 1024;
    std::string const path = "/proc/" + std::to_string(process) + "/smaps_rollup";
    std::ifstream file(path);
    for (std::string name; file >> name;) {
        double number = 0;
        if (name == field && file >> number) {
            return number * kilobyte;
        }
        file.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
    throw std::runtime_error("no " + std::string(field) + " in " + path);
}

/// Rounds and processor time of all readers since they started.
struct Work {
    double rounds = 0;
    double processorTime = 0;
};

Work workOf(Helpers const& readers) {
    Work work;
    for (auto const& reader : readers) {
        work.rounds += static_cast<double>(reader->control().rounds.load());
        work.processorTime += processorTimeOf(reader->process().id());
    }
    return work;
}

/// Updates for a while beside the readers, and adds what an update and a scan took.
void measure(bench::Library::Writer& writer, std::vector<bench::Access> const& accesses,
             Helpers const& readers, double seconds, Figures& figures) {
    constexpr double nanosecondsPerSecond = 1e9;
    auto const before = workOf(readers);
    auto const start = timeOn(CLOCK_MONOTONIC);
    auto const startProcessor = timeOn(CLOCK_THREAD_CPUTIME_ID);
    double updates = 0;
    double elapsed = 0;
    do {
        for (auto const& access : accesses) {
            writer.update(access, sampleOf(access));
        }
        updates += static_cast<double>(accesses.size());
        elapsed = timeOn(CLOCK_MONOTONIC) - start;
    } while (elapsed < seconds * nanosecondsPerSecond);
    figures["update, processor time"].push_back((timeOn(CLOCK_THREAD_CPUTIME_ID) - startProcessor) / updates);
    figures["update, elapsed"].push_back(elapsed / updates);
    auto const after = workOf(readers);
    if (auto const rounds = after.rounds - before.rounds; rounds > 0) {
        elapsed = timeOn(CLOCK_MONOTONIC) - start;
        figures["scan, processor time"].push_back((after.processorTime - before.processorTime) / rounds);
        figures["scan, elapsed"].push_back(elapsed * static_cast<double>(readers.size()) / rounds);
    }
}

/// Memory of the writer, and of a reader on average.
void measureMemory(Helpers const& readers, Figures& figures) {
    figures["memory of the writer"].push_back(memoryOf(getpid(), "Pss:"));
    if (readers.empty()) {
        return;
    }
    auto const mean = [&](std::string_view field) {
        double sum = 0;
        for (auto const& reader : readers) {
            sum += memoryOf(reader->process().id(), field);
        }
        return sum / static_cast<double>(readers.size());
    };
    figures["memory of a reader"].push_back(mean("Pss:"));
    figures["of it shared memory"].push_back(mean("Pss_Shmem:"));
    figures["of it private"].push_back(mean("Private_Clean:") + mean("Private_Dirty:"));
}

/// What a fresh process takes to open readers, in ns; in memory that it shares with the one that asked.
struct Opening {
    double construction; ///< of its first reader, which connects to the bus
    double mapping;      ///< from then on until that one has asked the hardware manager and mapped the region
    double furtherConstruction; ///< of its second reader
    double furtherMapping;
    double index;     ///< to build the index of one
    double processor; ///< processor time of all that, and of the process's start
};

constexpr char openOption[] = "--open";

/// A reader that does not wait, and how long it took to have the region.
class TimedReader {
public:
    TimedReader() {
        constexpr double patience = 60e9;
        while (!reader_.root()) {
            if (bench::stamp() - begin_ > patience) {
                throw std::runtime_error("a reader found no region; does a hardware manager run?");
            }
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        mapped_ = bench::stamp();
    }

    double construction() const { return constructed_ - begin_; }
    double mapping() const { return mapped_ - constructed_; }
    void rebuildIndex() { reader_.syncPositions(true); }

private:
    static constexpr unsigned int budget = 60; // seconds

    double begin_ = bench::stamp();
    shm::QelSharedMemoryReader reader_{budget, false};
    double constructed_ = bench::stamp();
    double mapped_ = 0;
};

void open(std::string const& object) {
    bench::SharedObject const shared(object, sizeof(Opening), bench::SharedObject::Access::ReadWrite);
    TimedReader first;
    TimedReader const second;
    auto const begin = bench::stamp();
    first.rebuildIndex();
    auto const end = bench::stamp();
    *static_cast<Opening*>(shared.data()) = {first.construction(),  first.mapping(),
                                             second.construction(), second.mapping(),
                                             end - begin,           timeOn(CLOCK_PROCESS_CPUTIME_ID)};
}

void measureOpening(Figures& figures) {
    std::string const object = "bench-opening";
    bench::SharedObject const shared(object, sizeof(Opening), bench::SharedObject::Access::Create);
    bench::Process const process({bench::ownProgram(), openOption, object});
    if (process.exitStatus() != 0) {
        throw std::runtime_error("a process that opens readers has failed");
    }
    auto const& opening = *static_cast<Opening const*>(shared.data());
    figures["constructor of a process's first reader"].push_back(opening.construction);
    figures["from there until it has mapped the region"].push_back(opening.mapping);
    figures["constructor of a further reader"].push_back(opening.furtherConstruction);
    figures["from there until that one has mapped it"].push_back(opening.furtherMapping);
    figures["index of a reader"].push_back(opening.index);
    figures["processor time of a process that starts and does all this"].push_back(opening.processor);
}

void runScale(bench::Options const& options) {
    bench::Plan const plan(options.shape);
    bench::Library::Writer writer;
    writer.open();
    writer.build(bench::Library::Input(plan));
    auto const accesses = plan.valueAccesses();
    Helpers readers;
    std::vector<bench::Finding> findings;
    auto const add = [&](Figures const& figures, std::string const& variant) {
        for (auto const& [name, numbers] : figures) {
            findings.push_back({"scale", name, variant, "numbers", numbers});
        }
    };
    Figures untilTheManagerAnswers;
    measureOpening(untilTheManagerAnswers);
    Figures openings;
    for (unsigned int pass = 0; pass < options.passes; ++pass) {
        measureOpening(openings);
    }
    add(openings, "open");
    for (auto const count : readerCounts) {
        while (readers.size() < count) {
            readers.push_back(std::make_unique<Helper>("scan", bench::Library::name, plan.shape()));
        }
        for (auto const& reader : readers) {
            reader->start();
        }
        Figures figures;
        for (unsigned int pass = 0; pass < options.passes; ++pass) {
            measure(writer, accesses, readers, options.seconds, figures);
        }
        for (auto const& reader : readers) {
            reader->stop();
        }
        measureMemory(readers, figures);
        add(figures, std::to_string(count));
    }
    writeFindings(options.out, options.shape, findings);
}

} // namespace

int main(int argc, char** argv) {
    log4cpp::Category::setRootPriority(log4cpp::Priority::EMERG);
    try {
        constexpr int openArguments = 3;
        if (argc == openArguments && argv[1] == std::string_view(openOption)) {
            open(argv[2]);
        } else if (argc > 1 && argv[1] == std::string_view(bench::helperOption)) {
            bench::runHelper({{"scan", bench::Library::name, scan}}, argc, argv);
        } else {
            runScale(bench::parseOptions(argc, argv));
        }
        return 0;
    } catch (std::exception const& error) {
        std::cerr << argv[0] << ": " << error.what() << '\n';
        return 1;
    }
}
