// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/Gnuplot.h"

#include "inspect/image/FileDescriptor.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX leaves it to the program

namespace qel::plot {

namespace {

using inspect::FileDescriptor;

[[noreturn]] void fail(std::string const& problem) {
    throw GnuplotError("cannot draw the plot: " + problem);
}

[[noreturn]] void fail(int error) {
    fail(std::generic_category().message(error));
}

/// In memory. Unlike a pipe it takes all of a script before somebody reads, so neither side waits for the other.
FileDescriptor memoryFile() {
    FileDescriptor file(::memfd_create("qelshm-plot", MFD_CLOEXEC));
    if (!file) {
        fail(errno);
    }
    return file;
}

std::string contentOf(FileDescriptor const& file) {
    auto const size = ::lseek(file.number(), 0, SEEK_END);
    std::string text(static_cast<std::size_t>(size < 0 ? 0 : size), '\0');
    text.resize(inspect::readAll([&](void* bytes, std::size_t count,
                                     off_t offset) { return ::pread(file.number(), bytes, count, offset); },
                                 text.data(), text.size()));
    return text;
}

/// The actions between fork and exec.
class FileActions {
public:
    FileActions(FileDescriptor const& input, FileDescriptor const& output, FileDescriptor const& errors) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, input.number(), STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions_, output.number(), STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&actions_, errors.number(), STDERR_FILENO);
    }
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }
    FileActions(FileActions const&) = delete;
    FileActions& operator=(FileActions const&) = delete;

    posix_spawn_file_actions_t const* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// The first line that says something.
std::string firstLine(std::string_view text) {
    auto const start = text.find_first_not_of(" \t\r\n^");
    auto const line = start == std::string_view::npos ? std::string_view() : text.substr(start);
    return std::string(line.substr(0, line.find('\n')));
}

} // namespace

std::string runGnuplot(std::string const& script) {
    auto const input = memoryFile();
    auto const output = memoryFile();
    auto const errors = memoryFile();
    if (int const error = inspect::writeAll(input.number(), script); error != 0) {
        fail(error);
    }
    ::lseek(input.number(), 0, SEEK_SET);
    std::string name = "gnuplot";
    std::string settings = "--default-settings";
    std::array<char*, 3> arguments{name.data(), settings.data(), nullptr};
    pid_t child = -1;
    FileActions const actions(input, output, errors);
    int const error = ::posix_spawnp(&child, name.c_str(), actions.get(), nullptr, arguments.data(), environ);
    if (error == ENOENT) {
        fail("there is no gnuplot; install the package gnuplot-nox, or leave out -o for a plot on the "
             "terminal");
    }
    if (error != 0) {
        fail(error);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    auto picture = contentOf(output);
    constexpr std::string_view end = "</svg>";
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || picture.rfind(end) == std::string::npos) {
        auto const reason = firstLine(contentOf(errors));
        fail("gnuplot failed" + (reason.empty() ? std::string() : ": " + reason));
    }
    return picture;
}

} // namespace qel::plot
