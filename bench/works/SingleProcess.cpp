// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/contenders/DBus.h"
#include "bench/contenders/Floor.h"
#include "bench/contenders/Hash.h"
#include "bench/contenders/Interprocess.h"
#include "bench/contenders/Library.h"
#include "bench/contenders/Literal.h"
#include "bench/contenders/Lmdb.h"
#include "bench/contenders/Mmv.h"
#include "bench/contenders/Redis.h"
#include "bench/contenders/Sqlite.h"
#include "bench/works/Entries.h"
#include "bench/works/Formats.h"
#include "bench/works/Operations.h"

#include <iterator>
#include <utility>

namespace bench {

namespace {

template <typename Operation, template <typename> class Side, typename... Contenders>
std::vector<Candidate> sweeps() {
    return {candidate<Contenders, Sweep<Side<Contenders>, Operation>>("", Contenders::roundLimit)...};
}

template <typename Operation, template <typename> class Side, typename... Contenders>
std::vector<Candidate> wholes() {
    return {candidate<Contenders, Whole<Side<Contenders>, Operation>>("")...};
}

template <bool fresh, typename... Contenders>
std::vector<Candidate> builds() {
    return {candidate<Contenders, Build<Contenders, fresh>>("")...};
}

/// By what a client keeps for each value.
template <typename... Contenders>
std::vector<Candidate> keptUpdates() {
    return {candidate<Contenders, Sweep<KeptWriterSide<Contenders>, Update>>("", Contenders::roundLimit)...};
}

template <template <typename> class Propagation, typename... Contenders>
std::vector<Candidate> propagations() {
    return {candidate<Contenders, Propagation<Contenders>>("")...};
}

std::vector<Candidate> joined(std::vector<Candidate> candidates, std::vector<Candidate> others) {
    std::move(others.begin(), others.end(), std::back_inserter(candidates));
    return candidates;
}

template <typename... Formats>
std::vector<Candidate> formats() {
    return {candidate<Formats, Sweep<FormatSide, Formats>>("", InProcess::roundLimit)...};
}

} // namespace

std::vector<Work> singleProcessWorks() {
    return {
        {"update",
         joined(sweeps<Update, WriterSide, Floor, Hash, Library, Literal, InterprocessMap, InterprocessHash,
                       InterprocessHashHeapValue, Mmv, Lmdb, Sqlite, Redis, DBus>(),
                keptUpdates<LibraryKept, MmvKept>())},
        {"find", sweeps<Find, ReaderSide, Floor, Hash, Library, Literal, InterprocessMap, InterprocessHash,
                        Lmdb, Sqlite, Redis>()},
        {"fetch", sweeps<Fetch, ReaderSide, Floor, Hash, Library, LibraryByValue, LibraryKept, Literal,
                         InterprocessMap, InterprocessHash, Mmv, Lmdb, Sqlite, Redis, DBus>()},
        {"point", sweeps<PointValues, ReaderSide, Floor, Hash, Library, Literal, InterprocessMap, Lmdb,
                         Sqlite, Redis>()},
        {"visit", wholes<Visit, ReaderSide, Floor, Library, LibraryByRanges, Literal, InterprocessMap,
                         InterprocessHash, Mmv, Lmdb, Sqlite, Redis>()},
        {"rebuild", wholes<Rebuild, ReaderSide, Floor, Hash, Library, Literal>()},
        {"propagate", propagations<PropagateAfterChange, Floor, Library, Literal>()},
        {"propagate unchanged", propagations<PropagateUnchanged, Floor, Library, Literal>()},
        {"create",
         builds<true, Floor, Hash, Library, Literal, InterprocessMap, InterprocessHash, Mmv, Lmdb, Sqlite>()},
        {"add",
         builds<false, Floor, Hash, Library, Literal, InterprocessMap, InterprocessHash, Lmdb, Sqlite>()},
        {"format", formats<FloorFormat, LibraryFormat, LiteralFormat>()},
    };
}

} // namespace bench
