// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/LedFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace qel::test {

namespace {

constexpr char const* colors[] = {"red", "green", "blue"};

} // namespace

std::string ledDevice(std::string const& color) {
    return "/sys/class/leds/" + color;
}

std::string ledFile(std::string const& color) {
    return ledDevice(color) + "/brightness";
}

std::string contentOf(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return "(none)";
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(std::string const& path, std::string const& content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

std::string ledContents() {
    return contentOf(ledFile("red")) + "/" + contentOf(ledFile("green")) + "/" + contentOf(ledFile("blue"));
}

void markLedFiles() {
    for (auto const* const color : colors) {
        writeFile(ledFile(color), "untouched");
    }
}

void restoreLedFiles() {
    for (auto const* const color : colors) {
        std::filesystem::remove_all(ledFile(color));
        std::filesystem::create_directories(ledDevice(color));
        writeFile(ledFile(color), "");
    }
}

} // namespace qel::test
