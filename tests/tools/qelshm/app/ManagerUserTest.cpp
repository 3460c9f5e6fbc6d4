// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/ManagerUser.h"

#include "tests/tools/qelshm/NameOfNobody.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace qel::test {

namespace {

/// Another address of the system bus for as long as it lives.
class BusAddress {
public:
    explicit BusAddress(char const* address) : former_(std::getenv(name)) { ::setenv(name, address, 1); }
    ~BusAddress() { ::setenv(name, former_.c_str(), 1); }
    BusAddress(BusAddress const&) = delete;
    BusAddress& operator=(BusAddress const&) = delete;

private:
    static constexpr char const* name = "DBUS_SYSTEM_BUS_ADDRESS";
    std::string former_;
};

} // namespace

TEST(ManagerUserTest, WithoutAnOwnerOfTheName_IsNotKnown) {
    EXPECT_EQ(std::nullopt, tools::managerUser());
}

TEST(ManagerUserTest, IsTheUserOfWhoOwnsTheName) {
    {
        NameOfNobody const name;
        if (!name.isOwned()) {
            GTEST_SKIP() << "there is no other user";
        }
        EXPECT_EQ(65534U, tools::managerUser());
    }
    EXPECT_EQ(std::nullopt, tools::managerUser());
}

TEST(ManagerUserTest, WithoutABus_IsNotKnown) {
    BusAddress const none("unix:path=/dev/shm/no-bus");
    EXPECT_EQ(std::nullopt, tools::managerUser());
}

TEST(ManagerUserTest, BusThatDoesNotAnswer_IsGivenUp) {
    constexpr char const* path = "/dev/shm/mute-bus";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, path);
    int const fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(0, ::bind(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address));
    ASSERT_EQ(0, ::listen(fd, 1));
    BusAddress const mute("unix:path=/dev/shm/mute-bus");
    EXPECT_EQ(std::nullopt, tools::managerUser());
    ::close(fd);
    ::unlink(path);
}

} // namespace qel::test
