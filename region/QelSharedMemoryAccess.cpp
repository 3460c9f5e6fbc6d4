#include "region/QelSharedMemoryAccess.h"

#include "region/LogLine.h"

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

constexpr mode_t objectMode = 0644;

/// Makes the object as large as the region and reserves its memory, so that a full /dev/shm shows here and
/// not as a SIGBUS at the first write. Gives 0 or the error number.
int sizeObject(int fd) {
    if (::ftruncate(fd, REGION_SIZE) != 0) {
        return errno;
    }
    int error = 0;
    do {
        error = ::posix_fallocate(fd, 0, REGION_SIZE);
    } while (error == EINTR); // a signal to the process is no reason to fail
    return error;
}

/// Reading past the end of a shorter object would raise SIGBUS.
bool isTooShort(int fd) {
    struct stat status = {};
    return ::fstat(fd, &status) == 0 && status.st_size < static_cast<off_t>(REGION_SIZE);
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
    int const fd = ::shm_open(REGION_NAME, writer ? O_RDWR | O_CREAT : O_RDONLY, writer ? objectMode : 0);
    if (fd < 0) {
        errorShm(ShmError::Open, errno);
    }

    int const sizeError = writer ? sizeObject(fd) : 0;
    if (sizeError != 0) {
        errorShm(ShmError::Resize, sizeError);
    }

    void* mapping = MAP_FAILED; // NOLINT(performance-no-int-to-ptr): POSIX's constant
    if (!writer && isTooShort(fd)) {
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
    if (access_ == ShmAccess::Write && ::shm_unlink(REGION_NAME) != 0) {
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
    for (auto const head : {mapped->root.devices, mapped->root.groups}) {
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

        out << std::hex << std::string(depth, ' ') << "- ";
        writeHex16(out, point->guid);
        out << ", this = " << point->pos << ", parent = " << point->parent << ", prev = " << point->prev
            << ", next = " << point->next << " [";
        for (auto pos = point->mvs; pos < MV_COUNT; pos = region()->values[pos].next) {
            if (pos != point->mvs) {
                out << ", ";
            }
            auto const fill = out.fill('0');
            out << "0x" << std::setw(4) << region()->values[pos].key;
            out.fill(fill);
        }
        out << "]\n";

        postpone(point->next, depth);
        postpone(point->children, depth + 2);
    }
}

} // namespace shm
