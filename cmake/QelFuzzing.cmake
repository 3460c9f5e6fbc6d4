# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

option(QEL_BUILD_FUZZERS "Build the fuzzing programs; Clang only" OFF)

# qel_guide_fuzzers(<target>)
#
# Code that fuzzers explore tells them which ways it took. It costs every program with that code some time, so just
# what is worth exploring does.
function(qel_guide_fuzzers target)
  if(QEL_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()
