# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# Tests that cannot pass under the emulator, each with the reason. CTest reads this file after the tests of each folder
# and counts these as disabled.

# posix_spawn tells of a program that is missing through memory that parent and child share until the child runs it. The
# emulator gives the child a copy.
set_tests_properties(support.ChildProcess.Constructor_NoSuchProgram_Throws PROPERTIES DISABLED TRUE)

# The emulator cannot start a thread in a forked child: it fails an assertion of its own.
set_tests_properties(reader.ThreadTest.Start_InAForkedChild_StartsAThreadOfTheChildsOwn PROPERTIES DISABLED TRUE)
