// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/TempFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace qel::test {

TempFile::TempFile(std::string const& text) : path_("/tmp/qel-tools-test-XXXXXX") {
    int const descriptor = ::mkstemp(path_.data());
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "mkstemp");
    }
    ::close(descriptor);
    std::ofstream(path_) << text;
}

TempFile::~TempFile() {
    ::unlink(path_.c_str());
}

} // namespace qel::test
