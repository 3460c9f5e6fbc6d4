// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/control/ControlClient.h"

#include "tools/replay/control/ControlSocket.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

namespace qel::tools {

namespace {

constexpr unsigned patience = 10; // s
constexpr std::size_t longestAnswer = 65536;

[[noreturn]] void fail(std::string const& path, GError* failure) {
    shm::GErrorPtr const error(failure);
    throw std::runtime_error("no answer from " + path + ": " + error->message);
}

} // namespace

ControlClient::ControlClient(std::string path) : path_(std::move(path)) {
    GError* failure = nullptr;
    socket_.reset(
        g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, &failure));
    if (!socket_) {
        fail(path_, failure);
    }
    g_socket_set_timeout(socket_.get(), patience);
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(patience);
    while (g_socket_connect(socket_.get(), ControlSocket::addressOf(path_).get(), nullptr, &failure) ==
           FALSE) {
        shm::GErrorPtr const error(std::exchange(failure, nullptr));
        // So many connections wait to be accepted that the system takes no other now.
        bool const isBusy = g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK) != FALSE;
        if (!isBusy || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("no replay takes commands at " + path_ + ": " + error->message +
                                     "; start one with --control " + path_);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

std::string ControlClient::ask(std::string const& command) {
    auto const line = command + '\n';
    GError* failure = nullptr;
    for (std::string_view rest = line; !rest.empty();) {
        auto const sent = g_socket_send(socket_.get(), rest.data(), rest.size(), nullptr, &failure);
        if (sent < 0) {
            fail(path_, failure);
        }
        rest.remove_prefix(static_cast<std::size_t>(sent));
    }
    std::string answer;
    std::array<char, 1024> block{};
    while (answer.find('\n') == std::string::npos && answer.size() < longestAnswer) {
        auto const size = g_socket_receive(socket_.get(), block.data(), block.size(), nullptr, &failure);
        if (size < 0) {
            fail(path_, failure);
        }
        if (size == 0) {
            throw std::runtime_error("no answer from " + path_ + ": the replay has ended");
        }
        answer.append(block.data(), static_cast<std::size_t>(size));
    }
    return answer.substr(0, answer.find('\n'));
}

} // namespace qel::tools
