// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelSharedMemoryAccess.h"

#include "region/LogLine.h"
#include "region/OwnObject.h"
#include "region/RegionFields.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iomanip>
#include <locale>
#include <sstream>
#include <vector>

namespace shm {

namespace {

/// The process that opened the region for writing, 0 for none yet. A forked child inherits the writer and its
/// mapping, but must not remove the name. (No member: size and layout of the class are part of the binary
/// interface.)
std::atomic<pid_t> writingProcess{0};
static_assert(std::atomic<pid_t>::is_always_lock_free);

bool isForkedChild() {
    pid_t const process = writingProcess;
    return process != 0 && process != ::getpid();
}

/// Makes the object as large as the region and reserves its memory, so that a full /dev/shm fails here and not by
/// SIGBUS at the first write. Returns 0 or the error number.
int sizeObject(int fd) {
    if (::ftruncate(fd, REGION_SIZE) != 0) {
        return errno;
    }
    int error = 0;
    do {
        error = ::posix_fallocate(fd, 0, REGION_SIZE);
    } while (error == EINTR);
    return error;
}

/// Opens without blocking, in case the name leads to a named pipe. Returns a descriptor, or -1 with errno.
int openToRead() {
    return ::shm_open(REGION_NAME, O_RDONLY | O_NONBLOCK, 0);
}

/// Tells whether the object is no regular file, or shorter than the region: reading past its end would raise SIGBUS.
bool isNoRegion(int fd) {
    struct stat status = {};
    return ::fstat(fd, &status) == 0 &&
           (!S_ISREG(status.st_mode) || status.st_size < static_cast<off_t>(REGION_SIZE));
}

void writeHex16(std::ostringstream& out, std::int64_t number) {
    auto const fill = out.fill('0');
    out << "0x" << std::setw(16) << static_cast<std::uint64_t>(number);
    out.fill(fill);
}

} // namespace

QelSharedMemoryAccess::QelSharedMemoryAccess(ShmAccess const& access) : access_(access), region_(nullptr) {
    LogLine(accessLog(), log4cpp::Priority::INFO, "QelSharedMemoryAccess") << "start";
}

QelSharedMemoryAccess::~QelSharedMemoryAccess() {
    closeShm();
    LogLine(accessLog(), log4cpp::Priority::INFO, "~QelSharedMemoryAccess") << "done";
}

void QelSharedMemoryAccess::openShm() {
    bool const writer = access_ == ShmAccess::Write;
    if (writer) {
        writingProcess = ::getpid();
    }
    int const fd = writer ? openOwnObject() : openToRead();
    if (fd < 0) {
        errorShm(ShmError::Open, errno);
    }

    int const sizeError = writer ? sizeObject(fd) : 0;
    if (sizeError != 0) {
        errorShm(ShmError::Resize, sizeError);
    }

    void* mapping = MAP_FAILED; // NOLINT(performance-no-int-to-ptr): POSIX's constant
    if (!writer && isNoRegion(fd)) {
        errorShm(ShmError::Map, ENXIO); // POSIX mmap: addresses that are invalid for the object
    } else {
        mapping =
            ::mmap(nullptr, REGION_SIZE, writer ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, fd, 0);
        if (mapping == MAP_FAILED) { // NOLINT(performance-no-int-to-ptr)
            errorShm(ShmError::Map, errno);
        } else if (sizeError != 0) {
            ::munmap(mapping, REGION_SIZE);
        } else {
            region_.store(static_cast<record::Region*>(mapping));
        }
    }

    if (fd >= 0) {
        ::close(fd);
    }
    if (writer && region() != nullptr) {
        std::memset(region(), WIPE_BYTE, REGION_SIZE);
    }
}

void QelSharedMemoryAccess::closeShm() {
    if (region() == nullptr) {
        return;
    }
    if (::munmap(region(), REGION_SIZE) != 0) {
        int const error = errno;
        // Deliberate: no separator before the system's text, unlike the other messages.
        LogLine(accessLog(), log4cpp::Priority::ERROR, "closeShm")
            << "failed to unmap the shared memory" << std::strerror(error);
    }
    unlinkShm();
}

void QelSharedMemoryAccess::unlinkShm() {
    region_.store(nullptr);
    if (access_ == ShmAccess::Write && !isForkedChild() && ::shm_unlink(REGION_NAME) != 0) {
        int const error = errno;
        LogLine(accessLog(), log4cpp::Priority::ERROR, "unlinkShm")
            << "failed to unlink the shared memory, " << std::strerror(error);
    }
}

void QelSharedMemoryAccess::errorShm(ShmError const& error, int errnum) {
    char const* text = "";
    switch (error) {
    case ShmError::Open:
        text = "failed to open the shared memory file";
        break;
    case ShmError::Resize:
    case ShmError::Map:
        text = "failed to resize/map the shared memory";
        break;
    }
    LogLine(accessLog(), log4cpp::Priority::ERROR, "errorShm") << text << ", " << std::strerror(errnum);
    if (error == ShmError::Resize || error == ShmError::Map) {
        unlinkShm();
    }
}

std::string QelSharedMemoryAccess::tree() const {
    record::Region const* const mapped = region();
    if (mapped == nullptr) {
        return {};
    }
    std::ostringstream out;
    out.imbue(std::locale::classic()); // no digit grouping, whatever the process's locale
    out << std::hex << "0x" << static_cast<std::uint64_t>(mapped->root.guid) << '\n';
    for (auto const head : {loadLink(mapped->root.devices), loadLink(mapped->root.groups)}) {
        if (head < MP_COUNT) {
            treenode(mapped->points[head], 2, out);
        }
    }
    return out.str();
}

void QelSharedMemoryAccess::treenode(QelShmMP const& mp, unsigned int indent, std::ostringstream& out) const {
    struct Pending {
        QelShmMP const* point;
        unsigned int indent;
    };
    // A stack of its own instead of recursion: sibling lists and nesting may be 800 points long.
    std::vector<Pending> pending{{&mp, indent}};
    auto const postpone = [&](std::uint32_t pos, unsigned int pointIndent) {
        if (pos < MP_COUNT) {
            pending.push_back({&region()->points[pos], pointIndent});
        }
    };

    while (!pending.empty()) {
        auto const [point, depth] = pending.back();
        pending.pop_back();

        auto const next = loadLink(point->next);
        auto const first = loadLink(point->mvs);
        out << std::hex << std::string(depth, ' ') << "- ";
        writeHex16(out, point->guid);
        out << ", this = " << point->pos << ", parent = " << loadLink(point->parent)
            << ", prev = " << loadLink(point->prev) << ", next = " << next << " [";
        for (auto pos = first; pos < MV_COUNT; pos = loadLink(region()->values[pos].next)) {
            if (pos != first) {
                out << ", ";
            }
            auto const fill = out.fill('0');
            out << "0x" << std::setw(4) << region()->values[pos].key;
            out.fill(fill);
        }
        out << "]\n";

        postpone(next, depth);
        postpone(loadLink(point->children), depth + 2);
    }
}

} // namespace shm
