// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Files of a test, and a limit to their size.
#pragma once

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace qel::test {

/// A test with a directory of its own.
/// @tparam Error what the code under test throws
template <typename Error>
class FileTest : public testing::Test {
protected:
    FileTest() : directory_("/tmp/qel-inspect-XXXXXX") {
        if (::mkdtemp(directory_.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
    }
    ~FileTest() override { std::filesystem::remove_all(directory_); }

    /// A path in the directory; of the directory itself with a slash for "".
    std::string path(std::string const& name = "file") const { return directory_ + '/' + name; }

    static std::string content(std::string const& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static void fill(std::string const& path, std::string const& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    /// The text of the failure, "(none)" if there is none.
    template <typename Action>
    static std::string problemOf(Action const& action) {
        try {
            action();
        } catch (Error const& error) {
            return error.what();
        }
        return "(none)";
    }

private:
    std::string directory_;
};

/// No file of this process grows beyond a size, as on a full disk.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        rlimit limit = before_;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        static_cast<void>(std::signal(SIGXFSZ, handler_));
    }
    SizeLimit(SizeLimit const&) = delete;
    SizeLimit& operator=(SizeLimit const&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int);
};

} // namespace qel::test
