/// @file
/// The library.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/contenders/TreeReader.h"
#include "bench/contenders/TreeWriter.h"
#include "reader/QelSharedMemoryReader.h"
#include "region/QelShmMVal.h"
#include "writer/QelSharedMemoryWriter.h"

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
    using Reader = TreeReader<OpenReader>;
};

/// The library's reader where the client keeps the handle that mvs() gave.
struct LibraryKept : InProcess {
    static constexpr char name[] = "library, kept QelShmMVal";

    using Input = Library::Input;
    using Writer = Library::Writer;

    /// Keeps the handle of the value that was fetched last.
    class Reader {
    public:
        explicit Reader(Plan const& plan) : reader_(plan) {}

        double fetch(Access const& access) {
            if (access.svid != svid_) {
                svid_ = access.svid;
                kept_ = reader_.handle(access);
            }
            return *const_cast<double const volatile*>(&kept_->value);
        }

    private:
        Library::Reader reader_;
        long long svid_ = 0;
        shm::QelShmMVal kept_;
    };
};

} // namespace bench
