// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/SettingsFile.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace qel::watch {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class SettingsFileTest : public testing::Test {
protected:
    SettingsFileTest() { fs::create_directory(directory); }
    ~SettingsFileTest() override { fs::remove_all(directory); }

    WatchSettings load() {
        return sut.load([&](std::string const& line) { told += line + '\n'; });
    }

    std::string content() const {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fs::path const directory = "/dev/shm/settings-test";
    fs::path const path = directory / "config" / "qelshm" / "watch.json";
    WatchSettings const changed{SortOrder::State, true, 1};
    SettingsFile sut{path};
    std::string told;
};

} // namespace

TEST_F(SettingsFileTest, NoFile_MeansDefaultsAndIsNotTold) {
    EXPECT_EQ(WatchSettings(), load());
    EXPECT_EQ("", told);
}

TEST_F(SettingsFileTest, SavedSettings_AreLoadedAgain) {
    load();
    EXPECT_TRUE(sut.save(changed));
    EXPECT_EQ(changed, load());
    EXPECT_EQ(1, std::distance(fs::directory_iterator(path.parent_path()), {}))
        << "nothing else is left there";
}

TEST_F(SettingsFileTest, UnchangedSettings_AreNotWritten) {
    load();
    EXPECT_TRUE(sut.save({}));
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(SettingsFileTest, DamagedFile_IsIgnoredWithOneLine) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "{\"sort\": \"\x1b[2J";
    EXPECT_EQ(WatchSettings(), load());
    EXPECT_THAT(told, HasSubstr("settings ignored: " + path.string()));
    EXPECT_EQ(1, std::count(told.begin(), told.end(), '\n'));
    EXPECT_EQ(std::string::npos, told.find('\x1b'));
    EXPECT_THAT(content(), HasSubstr("2J")) << "it stays as it is";
}

TEST_F(SettingsFileTest, WhatIsNoFile_IsIgnored) {
    fs::create_directories(path);
    EXPECT_EQ(WatchSettings(), load());
    EXPECT_THAT(told, HasSubstr("no regular file"));
    EXPECT_FALSE(sut.save(changed));
    told.clear();
    fs::remove(path);
    ASSERT_EQ(0, ::mkfifo(path.c_str(), 0600));
    EXPECT_EQ(WatchSettings(), load());
    EXPECT_THAT(told, HasSubstr("no regular file"));
}

TEST_F(SettingsFileTest, HugeFile_IsIgnored) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << std::string(70000, ' ') << "{}";
    EXPECT_EQ(WatchSettings(), load());
    EXPECT_THAT(told, HasSubstr("longer than 65536 bytes"));
}

TEST_F(SettingsFileTest, DirectoryThatCannotBeMade_IsNoFailure) {
    std::ofstream(directory / "config") << "a file";
    EXPECT_EQ(WatchSettings(), load());
    EXPECT_FALSE(sut.save(changed));
    EXPECT_EQ(WatchSettings(), SettingsFile("").load([](std::string const&) { FAIL(); }));
    EXPECT_FALSE(SettingsFile("").save(changed));
}

TEST_F(SettingsFileTest, Link_StaysALink) {
    fs::create_directories(path.parent_path());
    auto const target = directory / "dotfile.json";
    std::ofstream(target) << "{}";
    fs::create_symlink(target, path);
    load();
    EXPECT_TRUE(sut.save(changed));
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_THAT(content(), HasSubstr("state"));
}

TEST_F(SettingsFileTest, PathOfUser_FollowsTheEnvironment) {
    ::setenv("XDG_CONFIG_HOME", "/xdg", 1);
    ::setenv("HOME", "/home/me", 1);
    EXPECT_EQ("/xdg/qelshm/watch.json", SettingsFile::ofUser().path());
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ("/home/me/.config/qelshm/watch.json", SettingsFile::ofUser().path());
    ::unsetenv("XDG_CONFIG_HOME");
    ::unsetenv("HOME");
    EXPECT_EQ("", SettingsFile::ofUser().path());
}

} // namespace qel::watch
