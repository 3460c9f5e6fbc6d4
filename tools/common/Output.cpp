// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Output.h"

#include "tools/common/CommandLine.h"
#include "tools/common/ExitStatus.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <system_error>

namespace qel::tools {

namespace {

bool isReaderGone(int descriptor) {
    pollfd output{descriptor, 0, 0};
    return ::poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

} // namespace

void writeOutput(std::ostream& out, std::string_view text) {
    out << text << std::flush;
    if (!out) {
        throw OutputError();
    }
}

void openStandardDescriptors() {
    for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) != -1) {
            continue;
        }
        // The lowest free descriptor is this one. Read-only, so that writing to it fails; inherited like the others.
        if (::open("/dev/null", O_RDONLY) != descriptor) {
            throw std::system_error(errno, std::generic_category(), "/dev/null");
        }
    }
}

bool hasOutputFailed(std::ostream const& out) {
    return !out && !isReaderGone(STDOUT_FILENO);
}

int statusOfOutput(CLI::App const& app) {
    if (!hasOutputFailed(std::cout)) {
        return exitSuccess;
    }
    tellError(app, OutputError().what());
    return exitFailure;
}

} // namespace qel::tools
