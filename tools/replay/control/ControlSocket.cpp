// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/ControlSocket.h"

#include "tools/replay/control/ControlCommands.h"

#include <gio/gunixsocketaddress.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace qel::tools {

namespace {

constexpr char lineEnd = '\n';
constexpr mode_t ownerOnly = 0600;
constexpr int mostWaiting = 64;     // connections that are not accepted yet
constexpr guint acceptPause = 1000; // ms

[[noreturn]] void fail(std::string const& path, std::string const& reason) {
    throw std::runtime_error("cannot take commands at " + path + ": " + reason);
}

shm::GObjectPtr<GSocket> newSocket(std::string const& path) {
    GError* failure = nullptr;
    shm::GObjectPtr<GSocket> socket(
        g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, &failure));
    if (!socket) {
        fail(path, shm::GErrorPtr(failure)->message);
    }
    g_socket_set_blocking(socket.get(), FALSE);
    return socket;
}

bool isWouldBlock(GError const* error) {
    return g_error_matches(error, G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK) != FALSE;
}

} // namespace

shm::GObjectPtr<GSocketAddress> ControlSocket::addressOf(std::string const& path) {
    constexpr std::size_t longestPath = 107; // sun_path, with a zero byte behind it
    if (path.empty() || path.size() > longestPath) {
        throw std::runtime_error("the path of a socket has 1 to " + std::to_string(longestPath) +
                                 " bytes; this one has " + std::to_string(path.size()));
    }
    return shm::GObjectPtr<GSocketAddress>(g_unix_socket_address_new(path.c_str()));
}

ControlSocket::ControlSocket(std::string path, Answer answer)
    : path_(std::move(path)),
      answer_(std::move(answer)),
      socket_(newSocket(path_)) {
    listen();
    watchForClients();
}

ControlSocket::~ControlSocket() {
    struct stat there {};
    // Somebody may have put another file there.
    if (::lstat(path_.c_str(), &there) == 0 && there.st_dev == own_.st_dev && there.st_ino == own_.st_ino) {
        static_cast<void>(::unlink(path_.c_str()));
    }
}

void ControlSocket::listen() {
    auto const address = addressOf(path_);
    // The file takes this mode when it is created: at no moment may others use it.
    if (::fchmod(g_socket_get_fd(socket_.get()), ownerOnly) != 0) {
        fail(path_, std::strerror(errno));
    }
    GError* failure = nullptr;
    if (g_socket_bind(socket_.get(), address.get(), FALSE, &failure) == FALSE) {
        shm::GErrorPtr const error(failure);
        if (g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_ADDRESS_IN_USE) == FALSE) {
            fail(path_, error->message);
        }
        removeStale();
        GError* again = nullptr;
        if (g_socket_bind(socket_.get(), address.get(), FALSE, &again) == FALSE) {
            fail(path_, shm::GErrorPtr(again)->message);
        }
    }
    if (::lstat(path_.c_str(), &own_) != 0) {
        fail(path_, std::strerror(errno));
    }
    g_socket_set_listen_backlog(socket_.get(), mostWaiting);
    if (g_socket_listen(socket_.get(), &failure) == FALSE) {
        fail(path_, shm::GErrorPtr(failure)->message);
    }
}

// A socket refuses connections once its process has ended.
void ControlSocket::removeStale() const {
    struct stat there {};
    if (::lstat(path_.c_str(), &there) == 0 && !S_ISSOCK(there.st_mode)) {
        fail(path_, "a file that is no socket is there; name another path");
    }
    auto const probe = newSocket(path_);
    GError* failure = nullptr;
    bool const isConnected =
        g_socket_connect(probe.get(), addressOf(path_).get(), nullptr, &failure) != FALSE;
    if (isConnected || isWouldBlock(failure) ||
        g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_PENDING) != FALSE) {
        g_clear_error(&failure);
        fail(path_, "another process takes commands there; end it first, or name another path");
    }
    shm::GErrorPtr const error(failure);
    if (g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED) == FALSE &&
        g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_NOT_FOUND) == FALSE) {
        fail(path_, error->message);
    }
    static_cast<void>(::unlink(path_.c_str()));
}

void ControlSocket::watchForClients() {
    source_.reset(g_socket_create_source(socket_.get(), G_IO_IN, nullptr));
    GSocketSourceFunc const onClient = [](GSocket* /*socket*/, GIOCondition /*condition*/,
                                          gpointer self) -> gboolean {
        static_cast<ControlSocket*>(self)->accept();
        return G_SOURCE_CONTINUE; // without effect if accept() has replaced the source
    };
    g_source_set_callback(source_.get(), G_SOURCE_FUNC(onClient), this, nullptr);
    g_source_attach(source_.get(), nullptr);
}

void ControlSocket::pauseAccepting() {
    source_.reset(g_timeout_source_new(acceptPause));
    GSourceFunc const onPauseOver = [](gpointer self) -> gboolean {
        static_cast<ControlSocket*>(self)->watchForClients();
        return G_SOURCE_REMOVE;
    };
    g_source_set_callback(source_.get(), onPauseOver, this, nullptr);
    g_source_attach(source_.get(), nullptr);
}

// Without a free descriptor the client keeps waiting, and the main loop would call again and again.
void ControlSocket::accept() {
    GError* failure = nullptr;
    shm::GObjectPtr<GSocket> socket(g_socket_accept(socket_.get(), nullptr, &failure));
    if (!socket) {
        shm::GErrorPtr const error(failure);
        if (isWouldBlock(failure)) { // the client is gone
            return;
        }
        if (clients_.empty()) {
            pauseAccepting();
        } else {
            clients_.pop_front();
        }
        return;
    }
    g_socket_set_blocking(socket.get(), FALSE);
    if (clients_.size() == mostClients) {
        clients_.pop_front();
    }
    clients_.push_back({this, std::move(socket), "", ""});
    watch(clients_.back(), G_IO_IN);
}

void ControlSocket::watch(Client& client, GIOCondition condition) {
    client.source.reset(g_socket_create_source(client.socket.get(), condition, nullptr));
    GSocketSourceFunc const onReady = [](GSocket* /*socket*/, GIOCondition /*condition*/,
                                         gpointer self) -> gboolean {
        auto* const which = static_cast<Client*>(self);
        auto* const server = which->server;
        auto const entry = server->find(which);
        if (server->serve(*which)) {
            server->clients_.splice(server->clients_.end(), server->clients_, entry);
        } else {
            server->clients_.erase(entry);
        }
        return G_SOURCE_REMOVE; // the client waits by another source now, or is gone
    };
    g_source_set_callback(client.source.get(), G_SOURCE_FUNC(onReady), &client, nullptr);
    g_source_attach(client.source.get(), nullptr);
}

ControlSocket::Clients::iterator ControlSocket::find(Client const* client) {
    return std::find_if(clients_.begin(), clients_.end(),
                        [&](Client const& candidate) { return &candidate == client; });
}

/// One piece of input, one answer, or one piece of output, so that no client keeps others or the replay waiting.
/// @return whether the connection lasts
bool ControlSocket::serve(Client& client) {
    if (client.unsent.empty() && client.received.find(lineEnd) == std::string::npos && !receive(client)) {
        return false;
    }
    if (client.unsent.empty()) {
        answerNext(client);
    }
    if (!client.unsent.empty() && !send(client)) {
        return false;
    }
    bool const isMore = client.received.find(lineEnd) != std::string::npos;
    if (client.isEnding && client.unsent.empty() && !isMore) {
        return false;
    }
    watch(client, client.unsent.empty() && !isMore ? G_IO_IN : G_IO_OUT);
    return true;
}

bool ControlSocket::receive(Client& client) {
    std::array<char, 1024> block{};
    GError* failure = nullptr;
    auto const size = g_socket_receive(client.socket.get(), block.data(), block.size(), nullptr, &failure);
    if (size < 0) {
        shm::GErrorPtr const error(failure);
        return isWouldBlock(failure);
    }
    client.received.append(block.data(), static_cast<std::size_t>(size));
    if (size == 0) {
        client.isEnding = true;
        client.received += client.received.empty() ? "" : std::string(1, lineEnd); // the last line needs none
    }
    return true;
}

void ControlSocket::answerNext(Client& client) {
    auto const end = client.received.find(lineEnd);
    if (end != std::string::npos) {
        auto line = client.received.substr(0, end);
        client.received.erase(0, end + 1);
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        client.unsent = answer_(line) + lineEnd;
    } else if (client.received.size() > longestLine) {
        client.received.clear();
        client.isEnding = true;
        client.unsent = std::string(errorAnswer) + "the line has more than " + std::to_string(longestLine) +
                        " bytes; send one command a line" + lineEnd;
    }
}

bool ControlSocket::send(Client& client) {
    GError* failure = nullptr;
    auto const size =
        g_socket_send(client.socket.get(), client.unsent.data(), client.unsent.size(), nullptr, &failure);
    if (size < 0) {
        shm::GErrorPtr const error(failure);
        return isWouldBlock(failure);
    }
    client.unsent.erase(0, static_cast<std::size_t>(size));
    return true;
}

} // namespace qel::tools
