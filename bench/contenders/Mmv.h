// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Memory-mapped values of Performance Co-Pilot.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/support/Plan.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace bench {

/// One metric each for number, time and state of a key, one instance per point. The addresses of the values are kept in
/// a hash by sensor id, as the interface advises: its own look-up by name is a linear search.
struct Mmv : InProcess {
    static constexpr char name[] = "PCP MMV";

    using Input = Plan;

    /// Where a value's number, time and state lie. The library's own type stays out of this header.
    struct Atoms {
        void* number;
        void* at;
        void* state;
    };

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

        /// By what a client keeps.
        void update(Atoms const& atoms, Sample const& sample);
        Atoms atomsOf(Access const& access) const { return atoms_.at(access.svid); }

    private:
        void close();

        void* registry_ = nullptr;
        void* file_ = nullptr;
        std::unordered_map<long long, Atoms> atoms_;
    };

    /// Maps the file, as the daemon does that collects the values.
    class Reader {
    public:
        explicit Reader(Plan const& plan);
        ~Reader();
        Reader(Reader const&) = delete;
        Reader& operator=(Reader const&) = delete;

        double fetch(Access const& access) const;
        double sumOfAll() const;

    private:
        std::size_t size_ = 0;
        char* file_ = nullptr;
        std::unordered_map<long long, double const*> numbers_;
    };
};

/// Its writer where the client keeps the addresses of each value.
struct MmvKept : Mmv {
    static constexpr char name[] = "PCP MMV, kept value";

    using Kept = Atoms;

    static Kept keep(Mmv::Writer& writer, Access const& access) { return writer.atomsOf(access); }

    static bool update(Mmv::Writer& writer, Kept const& kept, Sample const& sample) {
        writer.update(kept, sample);
        return true;
    }
};

} // namespace bench
