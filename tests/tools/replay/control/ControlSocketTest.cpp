// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/ControlSocket.h"

#include "tools/replay/control/ControlClient.h"

#include "tests/support/Sanitizers.h"
#include "tests/support/TempFile.h"

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace qel::tools {

namespace {

sockaddr_un addressOf(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

/// A plain connection.
class RawClient {
public:
    explicit RawClient(std::string const& path) : socket_(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        auto const address = addressOf(path);
        EXPECT_EQ(0, ::connect(socket_, reinterpret_cast<sockaddr const*>(&address), sizeof address));
    }
    ~RawClient() { ::close(socket_); }
    RawClient(RawClient const&) = delete;
    RawClient& operator=(RawClient const&) = delete;

    void send(std::string const& text) const {
        for (std::size_t sent = 0; sent < text.size();) {
            auto const size = ::send(socket_, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
            if (size <= 0) {
                return;
            }
            sent += static_cast<std::size_t>(size);
        }
    }

    /// Sends until the system takes no more.
    void fill(std::string const& text) const {
        while (::send(socket_, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT) > 0) {
        }
    }
    void end() const { ::shutdown(socket_, SHUT_WR); }

    /// All that comes until the other end closes.
    std::string readAll() const {
        std::string text;
        char block[256];
        for (ssize_t size = 0; (size = ::read(socket_, block, sizeof block)) > 0;) {
            text.append(block, static_cast<std::size_t>(size));
        }
        return text;
    }

private:
    int socket_;
};

constexpr char const* withoutDescriptors =
    "the sanitizer's check of an object's type opens a pipe, and fails without one";

/// While it lives, this process can open no further descriptor.
class NoMoreDescriptors {
public:
    NoMoreDescriptors() {
        EXPECT_EQ(0, ::getrlimit(RLIMIT_NOFILE, &before_));
        int const next = ::dup(STDIN_FILENO);
        ::close(next);
        auto limit = before_;
        limit.rlim_cur = static_cast<rlim_t>(next);
        EXPECT_EQ(0, ::setrlimit(RLIMIT_NOFILE, &limit));
    }
    ~NoMoreDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before_); }
    NoMoreDescriptors(NoMoreDescriptors const&) = delete;
    NoMoreDescriptors& operator=(NoMoreDescriptors const&) = delete;

private:
    rlimit before_{};
};

class ControlSocketTest : public testing::Test {
protected:
    std::unique_ptr<ControlSocket> open() {
        return std::make_unique<ControlSocket>(path_,
                                               [](std::string const& line) { return '<' + line + '>'; });
    }

    /// Runs clients in another thread, and the main context here until they are done.
    template <typename Work>
    void serve(Work const& work) {
        std::atomic<bool> isDone{false};
        std::thread clients([&] {
            work();
            isDone = true;
            g_main_context_wakeup(nullptr);
        });
        while (!isDone) {
            g_main_context_iteration(nullptr, TRUE);
        }
        clients.join();
    }

    bool isThere() const {
        struct stat file {};
        return ::lstat(path_.c_str(), &file) == 0;
    }

    std::string failure() {
        try {
            open();
        } catch (std::runtime_error const& error) {
            return error.what();
        }
        return "none";
    }

    test::TempFile const file_{""};
    std::string const path_ = file_.path() + ".socket";
};

} // namespace

TEST_F(ControlSocketTest, EachLine_IsAnswered) {
    auto const sut = open();
    serve([&] {
        ControlClient client(path_);
        EXPECT_EQ("<set a=1>", client.ask("set a=1"));
        EXPECT_EQ("<>", client.ask(""));
        EXPECT_EQ("<other>", ControlClient(path_).ask("other"));
        EXPECT_EQ("<more>", client.ask("more"));
    });
}

TEST_F(ControlSocketTest, LinesAtOnce_AreAnsweredInTurnAndTheLastNeedsNoEnd) {
    auto const sut = open();
    serve([&] {
        RawClient const client(path_);
        client.send("a\nb\r\n\nc");
        client.end();
        EXPECT_EQ("<a>\n<b>\n<>\n<c>\n", client.readAll());
    });
}

TEST_F(ControlSocketTest, File_IsOfItsOwnerOnlyWhateverTheUmask) {
    auto const before = ::umask(0);
    auto const sut = open();
    ::umask(before);
    struct stat file {};
    ASSERT_EQ(0, ::lstat(path_.c_str(), &file));
    EXPECT_EQ(0600U, file.st_mode & 07777U);
}

TEST_F(ControlSocketTest, End_RemovesTheFile) {
    auto sut = open();
    EXPECT_TRUE(isThere());
    sut.reset();
    EXPECT_FALSE(isThere());
}

TEST_F(ControlSocketTest, End_LeavesAnotherFileAlone) {
    auto sut = open();
    ASSERT_EQ(0, ::unlink(path_.c_str()));
    std::ofstream(path_) << "x";
    sut.reset();
    EXPECT_TRUE(isThere());
    ::unlink(path_.c_str());
}

TEST_F(ControlSocketTest, OldSocket_IsReplacedIfNobodyListens) {
    int const old = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    auto const address = addressOf(path_);
    ASSERT_EQ(0, ::bind(old, reinterpret_cast<sockaddr const*>(&address), sizeof address));
    ASSERT_EQ(0, ::listen(old, 1));
    for (int round = 0; round < 5; ++round) { // the last ones meet a full queue
        EXPECT_EQ("cannot take commands at " + path_ +
                      ": another process takes commands there; end it first, or name another path",
                  failure());
    }
    EXPECT_TRUE(isThere());
    ::close(old);

    auto const sut = open();
    serve([&] { EXPECT_EQ("<a>", ControlClient(path_).ask("a")); });
}

TEST_F(ControlSocketTest, PathThatIsNoPlaceForASocket_IsRefused) {
    std::ofstream(path_) << "x";
    EXPECT_EQ("cannot take commands at " + path_ + ": a file that is no socket is there; name another path",
              failure());
    ::unlink(path_.c_str());
    auto const answer = [](std::string const& line) {
        return line;
    };
    EXPECT_THROW(ControlSocket("/there/is/no/folder", answer), std::runtime_error);
    EXPECT_THROW(ControlSocket(std::string(108, 'x'), answer), std::runtime_error);
    EXPECT_THROW(ControlSocket("", answer), std::runtime_error);
}

TEST_F(ControlSocketTest, EndlessLine_IsRefusedAndEndsTheConnection) {
    auto const sut = open();
    serve([&] {
        RawClient const client(path_);
        client.send(std::string(1000000, 'x'));
        // What was sent behind the bound may make the system drop the answer.
        EXPECT_THAT(
            client.readAll(),
            testing::AnyOf("", "error: the line has more than 4096 bytes; send one command a line\n"));
        EXPECT_EQ("<a>", ControlClient(path_).ask("a"));
    });
}

TEST_F(ControlSocketTest, LongLine_IsToldWhatIsWrong) {
    auto const sut = open();
    serve([&] {
        RawClient const client(path_);
        client.send(std::string(ControlSocket::longestLine + 1, 'x'));
        EXPECT_EQ("error: the line has more than 4096 bytes; send one command a line\n", client.readAll());
    });
}

TEST_F(ControlSocketTest, ClientThatReadsNothing_KeepsNobodyWaiting) {
    auto const sut = open();
    serve([&] {
        RawClient const slow(path_);
        for (int round = 0; round < 50; ++round) {
            slow.fill(std::string(3000, '\n'));
            EXPECT_EQ("<a>", ControlClient(path_).ask("a"));
        }
    });
}

TEST_F(ControlSocketTest, ClientsThatCloseEarly_DoNoHarm) {
    auto const sut = open();
    serve([&] {
        for (int round = 0; round < 50; ++round) {
            RawClient const client(path_);
            client.send(round % 2 == 0 ? "a\nb\nc" : "");
        }
        EXPECT_EQ("<a>", ControlClient(path_).ask("a"));
    });
}

TEST_F(ControlSocketTest, ManyClients_ReplaceTheOneThatWasSilentLongest) {
    auto const sut = open();
    serve([&] {
        ControlClient busy(path_);
        EXPECT_EQ("<a>", busy.ask("a"));
        std::vector<std::unique_ptr<RawClient>> silent;
        for (std::size_t count = 0; count < 3 * ControlSocket::mostClients; ++count) {
            silent.push_back(std::make_unique<RawClient>(path_));
            EXPECT_EQ("<b>", busy.ask("b"));
        }
        EXPECT_EQ("", silent.front()->readAll()) << "closed";
        EXPECT_EQ("<c>", ControlClient(path_).ask("c"));
    });
}

TEST_F(ControlSocketTest, WithoutAFreeDescriptor_AClientWaitsAndTheReplayGoesOn) {
    if (test::underAddressSanitizer) {
        GTEST_SKIP() << withoutDescriptors;
    }
    auto const sut = open();
    RawClient const client(path_);
    client.send("a");
    client.end();
    {
        NoMoreDescriptors const none;
        int busy = 0;
        for (int round = 0; round < 100; ++round) {
            busy += g_main_context_iteration(nullptr, FALSE) != FALSE ? 1 : 0;
        }
        EXPECT_LT(busy, 10);
    }
    serve([&] { EXPECT_EQ("<a>\n", client.readAll()); });
}

TEST_F(ControlSocketTest, WithoutAFreeDescriptor_TheClientThatWasSilentLongestMakesPlace) {
    if (test::underAddressSanitizer) {
        GTEST_SKIP() << withoutDescriptors;
    }
    auto const sut = open();
    RawClient const silent(path_);
    serve([&] { EXPECT_EQ("<a>", ControlClient(path_).ask("a")); }); // by now the silent one is accepted
    RawClient const next(path_);
    next.send("b");
    next.end();
    NoMoreDescriptors const none;
    serve([&] {
        EXPECT_EQ("", silent.readAll()) << "closed";
        EXPECT_EQ("<b>\n", next.readAll());
    });
}

TEST_F(ControlSocketTest, ClientWithoutAServer_SaysWhatToDo) {
    try {
        ControlClient const client(path_);
        FAIL();
    } catch (std::runtime_error const& error) {
        EXPECT_THAT(error.what(), testing::MatchesRegex("no replay takes commands at .*: .*; start one with "
                                                        "--control .*"));
    }
}

} // namespace qel::tools
