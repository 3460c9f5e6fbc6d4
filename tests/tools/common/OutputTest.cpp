// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Output.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace qel::tools {

namespace {

/// In a child: closes descriptors, opens them anew and a file after them.
/// @return the descriptor of that file
int firstFreeAfter(std::initializer_list<int> closed) {
    for (int const descriptor : closed) {
        ::close(descriptor);
    }
    openStandardDescriptors();
    return ::open("/dev/zero", O_RDWR | O_CLOEXEC);
}

} // namespace

TEST(OutputTest, WriteOutput_WritesTheText) {
    std::ostringstream out;
    writeOutput(out, "text\n");
    EXPECT_EQ("text\n", out.str());
}

TEST(OutputTest, WriteOutputToAFullDevice_Throws) {
    std::ofstream out("/dev/full");
    EXPECT_THAT([&] { writeOutput(out, "text\n"); },
                testing::ThrowsMessage<OutputError>("the output cannot be written"));
}

TEST(OutputTest, ClosedDescriptors_AreNotTakenByTheNextFile) {
    for (auto const& closed : std::initializer_list<std::initializer_list<int>>{
             {0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}}) {
        EXPECT_EXIT(std::_Exit(firstFreeAfter(closed) > STDERR_FILENO ? 0 : 1), testing::ExitedWithCode(0),
                    "");
    }
}

TEST(OutputTest, ClosedInput_IsAtItsEnd_ClosedOutputCannotBeWritten) {
    EXPECT_EXIT(
        {
            char byte = 0;
            firstFreeAfter({0, 1, 2});
            bool const isEnd = ::read(STDIN_FILENO, &byte, 1) == 0;
            bool const isOutputBad = ::write(STDOUT_FILENO, &byte, 1) == -1 && errno == EBADF;
            bool const areErrorsBad = ::write(STDERR_FILENO, &byte, 1) == -1 && errno == EBADF;
            std::_Exit(isEnd && isOutputBad && areErrorsBad ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(OutputTest, OpenDescriptors_StayWhatTheyAre) {
    EXPECT_EXIT(
        {
            ::close(STDIN_FILENO);
            openStandardDescriptors();
            std::_Exit(::write(STDERR_FILENO, "still there", 11) == 11 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "still there");
}

} // namespace qel::tools
