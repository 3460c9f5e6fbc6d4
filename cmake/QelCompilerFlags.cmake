# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# All compiler flags of this project. The presets choose among them by the options below; a build without presets gets
# those of the library alone.
option(QEL_STRICT "Enable warnings and turn them into errors" OFF)
option(QEL_BUILD_FUZZERS "Build the fuzzing programs; Clang only" OFF)
option(QEL_QUICK_BUILD "Compile tools and tests jointly and without optimisation" OFF)
set(QEL_INSTRUMENTATION "" CACHE STRING "Flags of a sanitizer or of coverage, for compiling and linking")

if(QEL_STRICT)
  string(APPEND CMAKE_CXX_FLAGS " -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror")
endif()
string(APPEND CMAKE_CXX_FLAGS " ${QEL_INSTRUMENTATION}")

# Calls into other libraries go through their pointers, without a stub in between. Calls inside the library are direct:
# nobody is meant to replace its exported functions.
set(QEL_LIBRARY_FLAGS -fno-plt -fno-semantic-interposition)

# qel_library_flags(<target>)
#
# For what becomes part of the shared library. Nothing of it may run before main() or after its end; only Clang can
# check that.
function(qel_library_flags target)
  target_compile_options(${target} PRIVATE ${QEL_LIBRARY_FLAGS}
    "$<$<CXX_COMPILER_ID:Clang>:-Wglobal-constructors;-Wexit-time-destructors>")
endfunction()

# qel_guide_fuzzers(<target>)
#
# For code that is worth exploring: it reports to fuzzers which branches it took. Every program with that code gets
# slower by this.
function(qel_guide_fuzzers target)
  if(QEL_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# A quick build is for tools and tests that are only run: several sources of a target are compiled at a time, which reads
# their common headers once; the largest headers are precompiled; nothing is optimised. The library itself is compiled as
# always. The preset lint is no quick build, so it shows a source that lacks an include.

# qel_compile_jointly(<target> [EXCEPT <source>...])
#
# EXCEPT: sources that use the same names for different things.
function(qel_compile_jointly target)
  cmake_parse_arguments(PARSE_ARGV 1 jointly "" "" "EXCEPT")
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${QEL_QUICK_BUILD} UNITY_BUILD_BATCH_SIZE 12)
  set_source_files_properties(${jointly_EXCEPT} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  if(QEL_QUICK_BUILD)
    # Warnings about names of other sources, and about fixtures in unnamed namespaces, are false here.
    target_compile_options(${target} PRIVATE -Wno-shadow "$<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>")
  endif()
endfunction()

# qel_precompile(<target> <header>...)
#
# The largest headers of a target's sources. (ccache needs CCACHE_SLOPPINESS=pch_defines,time_macros for it.)
function(qel_precompile target)
  if(QEL_QUICK_BUILD)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# qel_reuse_precompiled(<target> <other>)
#
# The headers that the other target precompiles, for a target compiled by the same flags.
function(qel_reuse_precompiled target other)
  if(QEL_QUICK_BUILD)
    target_precompile_headers(${target} REUSE_FROM ${other})
  endif()
endfunction()

# qel_skip_optimisation(<target>)
#
# Not for programs whose tests need much processor time.
function(qel_skip_optimisation target)
  if(QEL_QUICK_BUILD)
    target_compile_options(${target} PRIVATE -O0)
  endif()
endfunction()

# qel_keep_optimised(<source>...)
#
# Sources of the calling folder whose tests need much processor time.
function(qel_keep_optimised)
  if(QEL_QUICK_BUILD)
    set_source_files_properties(${ARGV} PROPERTIES
      COMPILE_OPTIONS -O1 SKIP_UNITY_BUILD_INCLUSION ON SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()
