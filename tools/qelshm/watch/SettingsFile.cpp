// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/SettingsFile.h"

#include "tools/common/SafeText.h"

#include "inspect/image/OutputFile.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace qel::watch {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t largestFile = 65536;

/// An empty path if the variable is not set or not absolute.
fs::path directoryIn(char const* variable) {
    char const* const value = std::getenv(variable);
    fs::path directory(value == nullptr ? "" : value);
    return directory.is_absolute() ? directory : fs::path();
}

std::string contentOf(fs::path const& path) {
    // A pipe or device would block, and never end.
    if (!fs::is_regular_file(path)) {
        throw std::runtime_error("it is no regular file");
    }
    if (fs::file_size(path) > largestFile) {
        throw std::runtime_error("it is longer than " + std::to_string(largestFile) + " bytes");
    }
    std::ifstream file(path, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        throw std::runtime_error("it cannot be read");
    }
    return content;
}

} // namespace

SettingsFile SettingsFile::ofUser() {
    auto directory = directoryIn("XDG_CONFIG_HOME");
    if (directory.empty()) {
        directory = directoryIn("HOME");
        directory = directory.empty() ? directory : directory / ".config";
    }
    return SettingsFile(directory.empty() ? directory : directory / "qelshm" / "watch.json");
}

WatchSettings SettingsFile::load(std::function<void(std::string const&)> const& tell) {
    std::error_code error;
    if (path_.empty() || fs::symlink_status(path_, error).type() == fs::file_type::not_found) {
        return loaded_;
    }
    try {
        loaded_ = settingsFrom(contentOf(path_));
    } catch (std::exception const& problem) {
        tell("settings ignored: " + tools::safeText(path_.string()) + ": " + tools::safeText(problem.what()));
    }
    return loaded_;
}

void SettingsFile::write(WatchSettings const& settings) const {
    // A link that somebody put there stays.
    auto const target = fs::weakly_canonical(path_);
    fs::create_directories(target.parent_path());
    inspect::OutputFile file(target.string());
    file.write(settingsText(settings));
    file.finish();
}

bool SettingsFile::save(WatchSettings const& settings) const noexcept {
    if (settings == loaded_) {
        return true;
    }
    try {
        if (!path_.empty()) {
            write(settings);
        }
        return !path_.empty();
    } catch (std::exception const&) {
        return false; // the settings are a convenience
    }
}

} // namespace qel::watch
