// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Takes commands from other processes over a Unix socket.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>

#include <sys/stat.h>

namespace qel::tools {

/// Listens on a socket of its own in the file system, which only its user may use, and answers each line with a line. It
/// runs on the default main context and never waits for a client: what a client does not read stays with the client,
/// and it sends no further command meanwhile. Without a free descriptor, a new client replaces the one that was silent
/// longest, or waits for a second at a time. Removes the socket when destroyed.
///
/// Threads: thread-bound to the thread that runs the default main context.
class ControlSocket {
public:
    static constexpr std::size_t mostClients =
        16; ///< another one replaces the client that was silent longest
    static constexpr std::size_t longestLine =
        4096; ///< bytes; a client that sends a longer one is told and dropped

    /// Gives the answer to a line, both without line ends; must not throw.
    using Answer = std::function<std::string(std::string const& line)>;

    /// Replaces a socket that nobody listens on any more.
    /// @throws std::runtime_error if somebody listens on the path, or the socket cannot be created there
    ControlSocket(std::string path, Answer answer);
    ~ControlSocket();
    ControlSocket(ControlSocket const&) = delete;
    ControlSocket& operator=(ControlSocket const&) = delete;

    /// The socket address of a path.
    /// @throws std::runtime_error if the path is too long for one
    static shm::GObjectPtr<GSocketAddress> addressOf(std::string const& path);

private:
    struct SourceRelease {
        void operator()(GSource* source) const {
            g_source_destroy(source);
            g_source_unref(source);
        }
    };
    using SourcePtr = std::unique_ptr<GSource, SourceRelease>;

    /// One connection.
    struct Client {
        ControlSocket* server;
        shm::GObjectPtr<GSocket> socket;
        std::string received;  ///< without a line end, but for complete lines that wait for their turn
        std::string unsent;    ///< the answer, as far as the client has not taken it
        bool isEnding = false; ///< there is nothing to read from it any more
        SourcePtr source{};
    };
    using Clients = std::list<Client>; ///< the one that was silent longest first

    void listen();
    void removeStale() const;
    void watchForClients();
    void pauseAccepting();
    void accept();
    Clients::iterator find(Client const* client);
    bool serve(Client& client);
    bool receive(Client& client);
    void answerNext(Client& client);
    bool send(Client& client);
    void watch(Client& client, GIOCondition condition);

    std::string path_;
    Answer answer_;
    shm::GObjectPtr<GSocket> socket_;
    struct stat own_ {}; // of the socket in the file system
    SourcePtr source_;   // of new clients, or of the end of a pause
    Clients clients_;
};

} // namespace qel::tools
