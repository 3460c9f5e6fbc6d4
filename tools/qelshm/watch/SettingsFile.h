// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The file with the settings of watch.
#pragma once

#include "tools/qelshm/watch/WatchSettings.h"

#include <filesystem>
#include <functional>
#include <string>

namespace qel::watch {

/// Reads and writes settings. Nothing that goes wrong with the file stops the program.
///
/// Threads: reentrant.
class SettingsFile {
public:
    /// @param path of the file; empty for none
    explicit SettingsFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// The user's own: qelshm/watch.json in the directory that XDG_CONFIG_HOME names, or in .config of the home directory.
    /// Without an absolute path in either there is no file.
    static SettingsFile ofUser();

    /// Reads the settings.
    /// @param tell called with a line if there is a file that cannot be used
    /// @return the defaults if there is no file, or none that can be used
    WatchSettings load(std::function<void(std::string const&)> const& tell);

    /// Writes the settings if they differ from those that load() found. Makes missing directories; the new file replaces
    /// the old one as a whole.
    /// @return whether they are in the file now
    bool save(WatchSettings const& settings) const noexcept;

    std::filesystem::path const& path() const { return path_; }

private:
    void write(WatchSettings const& settings) const;

    std::filesystem::path path_;
    WatchSettings loaded_;
};

} // namespace qel::watch
