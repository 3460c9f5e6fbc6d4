# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# Asks a test program for its suites and writes a file from which CTest reads one test for each.
#
# cmake -D PROGRAM=... -D LAUNCHER=... -D PREFIX=... -D TIMEOUT=... -D COST=... -D OUTPUT=... -P DiscoverSuites.cmake
execute_process(COMMAND "${PROGRAM}" --gtest_list_tests
  OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[^ \n][^ \n]*\\.[^\n]*" suites "${listed}")
set(tests "")
foreach(suite IN LISTS suites)
  string(REGEX REPLACE "^\n?([^ ]+)\\.( .*)?$" "\\1" suite "${suite}")
  string(APPEND tests
    "add_test([==[${PREFIX}${suite}]==] [==[${LAUNCHER}]==] [==[${PROGRAM}]==] [==[--gtest_filter=${suite}.*]==])\n"
    "set_tests_properties([==[${PREFIX}${suite}]==] PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT ${TIMEOUT} COST ${COST})\n")
endforeach()
if(tests STREQUAL "")
  message(FATAL_ERROR "${PROGRAM} lists no tests")
endif()
file(WRITE "${OUTPUT}" "${tests}")
