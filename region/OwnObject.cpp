// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/OwnObject.h"

#include "region/LogLine.h"
#include "region/QelShmRecords.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

namespace shm {

namespace {

constexpr mode_t objectMode = 0644;
constexpr mode_t writtenByOthers = S_IWGRP | S_IWOTH;
// Another process may take the name each time that it is free. The pause keeps the two from running in step.
constexpr int maximumAttempts = 1000;
constexpr std::chrono::microseconds attemptPause(50);

/// What is known of the object under the name.
struct Found {
    int error = 0; ///< errno of fstat()
    struct stat status = {};
};

bool isOurs(Found const& found) {
    auto const& status = found.status;
    return found.error == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
           status.st_nlink == 1 && (status.st_mode & writtenByOthers) == 0;
}

Found lookAt(int fd) {
    Found found;
    found.error = ::fstat(fd, &found.status) == 0 ? 0 : errno;
    return found;
}

char const* typeText(mode_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return "a file";
    case S_IFLNK:
        return "a symbolic link";
    case S_IFDIR:
        return "a directory";
    case S_IFIFO:
        return "a named pipe";
    case S_IFSOCK:
        return "a socket";
    default:
        return "a device";
    }
}

void warn(Found const& found) {
    auto const& status = found.status;
    LogLine line(accessLog(), log4cpp::Priority::WARN, "openShm");
    line << "removing what stands under the name of the shared memory and is not ours: ";
    if (found.error != 0) {
        line << "the system does not tell what it is, " << std::strerror(found.error);
        return;
    }
    line << typeText(status.st_mode) << " of user " << status.st_uid;
    if (S_ISREG(status.st_mode)) {
        if ((status.st_mode & S_IWGRP) != 0) {
            line << ", which its group may write";
        }
        if ((status.st_mode & S_IWOTH) != 0) {
            line << ", which others may write";
        }
        if (status.st_nlink != 1) {
            line << ", which has " << status.st_nlink << " names";
        }
    }
}

/// Tells whether a failed opening met a foreign object, and what it is.
bool isInTheWay(Found& found) {
    // O_PATH needs no permission for the object, opens a symbolic link itself and never blocks.
    int const fd = ::shm_open(REGION_NAME, O_PATH | O_CLOEXEC, 0);
    if (fd < 0) {
        return false;
    }
    found = lookAt(fd);
    ::close(fd);
    return !isOurs(found);
}

/// Removes the name and creates a new object. Returns a descriptor, or -1 with errno; EEXIST when another process was
/// faster.
int createAnew() {
    if (::shm_unlink(REGION_NAME) != 0 && errno != ENOENT) {
        return -1;
    }
    return ::shm_open(REGION_NAME, O_RDWR | O_CREAT | O_EXCL, objectMode);
}

} // namespace

int openOwnObject() {
    bool isTold = false;
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        int fd = ::shm_open(REGION_NAME, O_RDWR | O_CREAT, objectMode);
        Found found;
        if (fd >= 0) {
            found = lookAt(fd);
            if (isOurs(found)) {
                return fd;
            }
            ::close(fd);
            if (found.error == 0 && found.status.st_nlink == 0) {
                continue; // its writer removed the name just now
            }
        } else if (int const error = errno; !isInTheWay(found)) {
            errno = error;
            return -1;
        }
        if (!isTold) {
            warn(found);
            isTold = true;
        }
        fd = createAnew();
        if (fd >= 0 || errno != EEXIST) {
            return fd;
        }
        std::this_thread::sleep_for(attemptPause);
    }
    errno = EEXIST;
    return -1;
}

} // namespace shm
