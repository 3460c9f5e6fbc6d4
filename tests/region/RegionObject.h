// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the tests of opening the region's object share.
#pragma once

#include "region/QelSharedMemoryAccess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace qel::test {

constexpr char const* objectFile = "/dev/shm/QelSharedMemory";
constexpr char const* linkedFile = "/dev/shm/linked";

class Access : public shm::QelSharedMemoryAccess {
public:
    using QelSharedMemoryAccess::errorShm;
    using QelSharedMemoryAccess::QelSharedMemoryAccess;
    using QelSharedMemoryAccess::region;
    using QelSharedMemoryAccess::treenode;
    using QelSharedMemoryAccess::unlinkShm;

    std::uint8_t const* bytes() const { return reinterpret_cast<std::uint8_t const*>(region()); }
};

class Writer : public Access {
public:
    Writer() : Access(shm::ShmAccess::Write) {}
};

class Reader : public Access {
public:
    Reader() : Access(shm::ShmAccess::Read) {}
};

/// What the access logs.
inline LogEntry info(std::string const& text) {
    return {"qel.shm.access", log4cpp::Priority::INFO, text};
}
inline LogEntry error(std::string const& text) {
    return {"qel.shm.access", log4cpp::Priority::ERROR, text};
}
inline LogEntry removing(std::string const& what) {
    return {"qel.shm.access", log4cpp::Priority::WARN,
            "openShm: removing what stands under the name of the shared memory and is not ours: " + what};
}

inline struct stat statusOf(char const* path = objectFile) {
    struct stat status = {};
    EXPECT_EQ(::lstat(path, &status), 0);
    return status;
}

/// Makes a file of that size, each byte 0x5A.
inline void makeFile(std::size_t size = rawRegionSize, char const* path = objectFile) {
    std::ofstream(path, std::ios::binary) << std::string(size, '\x5A');
}

inline bool isUntouched(char const* path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {}) == std::string(rawRegionSize, '\x5A');
}

/// Starts and ends without anything under the names.
class RegionObjectTest : public testing::Test {
protected:
    RegionObjectTest() { clear(); }
    ~RegionObjectTest() override { clear(); }

private:
    static void clear() {
        std::filesystem::remove_all(objectFile);
        std::filesystem::remove_all(linkedFile);
    }
};

} // namespace qel::test
