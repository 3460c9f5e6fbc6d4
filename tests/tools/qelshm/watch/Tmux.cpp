// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/watch/Tmux.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Eventually.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace qel::test {

namespace {

constexpr char const* prompt = "shell> ";

std::string newDirectory() {
    // Private to the test's surroundings: gone with them, even if the test is killed.
    std::string name = "/dev/shm/qel-tmux-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    return name;
}

} // namespace

Tmux::Tmux(int columns, int lines) : directory_(newDirectory()) {
    run({"new-session", "-d", "-x", std::to_string(columns), "-y", std::to_string(lines), "env",
         std::string("PS1=") + prompt, "HISTFILE=", "LC_ALL=C.UTF-8", "XDG_CONFIG_HOME=" + directory_, "bash",
         "--norc", "--noprofile"});
    if (!shows("shell>")) {
        throw std::runtime_error("no shell in tmux: " + screen());
    }
}

Tmux::~Tmux() {
    run({"kill-server"});
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
}

std::string Tmux::run(std::vector<std::string> const& arguments) const {
    std::vector<std::string> words{"tmux", "-u", "-S", directory_ + "/socket", "-f", "/dev/null"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    ChildProcess process(words, ChildProcess::Errors::IntoOutput);
    process.closeInput();
    auto output = process.readAll();
    process.wait();
    return output;
}

void Tmux::type(std::string const& text) const {
    run({"send-keys", "-l", text});
}

void Tmux::press(std::vector<std::string> const& keys) const {
    std::vector<std::string> words{"send-keys"};
    words.insert(words.end(), keys.begin(), keys.end());
    run(words);
}

void Tmux::resize(int columns, int lines) const {
    run({"resize-window", "-x", std::to_string(columns), "-y", std::to_string(lines)});
}

std::string Tmux::screen() const {
    return run({"capture-pane", "-p"});
}

std::string Tmux::colouredScreen() const {
    return run({"capture-pane", "-e", "-p"});
}

bool Tmux::shows(std::string const& text) const {
    return becomes([&](std::string const& screen) { return screen.find(text) != std::string::npos; });
}

bool Tmux::becomes(std::function<bool(std::string const&)> const& condition,
                   std::chrono::seconds timeout) const {
    return eventually([&] { return condition(screen()); }, timeout);
}

std::string Tmux::fact(std::string const& name) const {
    auto text = run({"display-message", "-p", "#{" + name + '}'});
    return text.substr(0, text.find('\n'));
}

} // namespace qel::test
