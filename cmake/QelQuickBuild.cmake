# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# With QEL_QUICK_BUILD tools and tests take less time to build, for builds whose tools and tests are only run: several
# sources of a target at a time, which reads their common headers once, with the largest headers compiled beforehand, and
# without optimisation. The library itself is compiled as ever. The preset lint, without all that, tells when a source
# leans on the includes of another.
option(QEL_QUICK_BUILD "Compile tools and tests jointly and without optimisation" OFF)

# qel_compile_jointly(<target> [EXCEPT <source>...])
#
# EXCEPT: sources that use the same names for different things.
function(qel_compile_jointly target)
  cmake_parse_arguments(PARSE_ARGV 1 jointly "" "" "EXCEPT")
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${QEL_QUICK_BUILD} UNITY_BUILD_BATCH_SIZE 6)
  set_source_files_properties(${jointly_EXCEPT} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  if(QEL_QUICK_BUILD)
    # What is said of a name of another source, and of fixtures in an unnamed namespace, does not hold here.
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

# qel_skip_optimisation(<target>)
#
# Not for programs that a test keeps busy.
function(qel_skip_optimisation target)
  if(QEL_QUICK_BUILD)
    target_compile_options(${target} PRIVATE -O0)
  endif()
endfunction()

# qel_keep_optimised(<source>...)
#
# Sources of the calling folder that its tests keep busy.
function(qel_keep_optimised)
  if(QEL_QUICK_BUILD)
    set_source_files_properties(${ARGV} PROPERTIES
      COMPILE_OPTIONS -O1 SKIP_UNITY_BUILD_INCLUSION ON SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()
