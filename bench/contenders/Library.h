// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The library.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/contenders/TreeReader.h"
#include "bench/contenders/TreeWriter.h"
#include "reader/QelSharedMemoryReader.h"
#include "reader/QelShmKeptMVal.h"
#include "region/QelShmMVal.h"
#include "writer/QelSharedMemoryWriter.h"
#include "writer/QelShmKeptUpdate.h"

#include <vector>

namespace bench {

/// The library's writer and reader, values by mpnt() and mvs().
struct Library : InProcess {
    static constexpr char name[] = "library";

    /// Starts without a region, as the other contenders do.
    class ClosedWriter : public shm::QelSharedMemoryWriter {
    public:
        ClosedWriter() { closeShm(); }
    };

    /// Opens at once what otherwise waits for the hardware manager.
    class OpenReader : public shm::QelSharedMemoryReader {
    public:
        OpenReader() : QelSharedMemoryReader(0, false) { QelSharedMemoryReader::openShm(); }
    };

    using Input = TreeInput<shm::QelSharedMemoryWriter::Definitions>;
    using Writer = TreeWriter<ClosedWriter, shm::QelSharedMemoryWriter::Definitions>;

    class Reader : public TreeReader<OpenReader> {
    public:
        using TreeReader::TreeReader;

    protected:
        shm::QelShmMVal value(long long svid) { return reader().mval(svid, false); }
        shm::QelShmMVal value(shm::QelShmKeptMVal& kept) { return reader().mval(kept); }
    };
};

/// The library's reader, values by their ids.
struct LibraryByValue : Library {
    static constexpr char name[] = "library, mval";

    class Reader : public Library::Reader {
    public:
        using Library::Reader::Reader;
        double fetch(Access const& access) { return value(access.svid)->value; }
    };
};

/// The library's reader, scanned by ranges.
struct LibraryByRanges : Library {
    static constexpr char name[] = "library, scan by ranges";

    class Reader : public Library::Reader {
    public:
        using Library::Reader::Reader;
        double sumOfAll() {
            double sum = 0;
            for (auto const& point : reader().points()) {
                for (auto const& value : point.values()) {
                    sum += value->value;
                }
            }
            return sum;
        }
    };
};

/// The library where the client keeps a handle for each value.
struct LibraryKept : Library {
    static constexpr char name[] = "library, kept value";

    using Kept = shm::QelShmKeptUpdate;

    static Kept keep(Library::Writer const& /*writer*/, Access const& access) { return Kept(access.svid); }

    static bool update(Library::Writer& writer, Kept& kept, Sample const& sample) {
        return writer.updateKept(kept, sample);
    }

    class Reader : public Library::Reader {
    public:
        explicit Reader(Plan const& plan) : Library::Reader(plan) {
            for (auto const& access : plan.valueAccesses()) {
                kept_.emplace_back(access.svid);
            }
        }

        double fetch(Access const& access) {
            return *const_cast<double const volatile*>(&value(kept_[access.value])->value);
        }

    private:
        std::vector<shm::QelShmKeptMVal> kept_; // by slot, as a client's own order would be
    };
};

} // namespace bench
