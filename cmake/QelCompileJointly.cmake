# qel_compile_jointly(<target> [EXCEPT <source>...])
#
# With QEL_COMPILE_JOINTLY the compiler takes several of the target's sources at a time, which reads their common
# headers once: for builds that are only tested. EXCEPT: sources that use the same names for different things. A build
# without it tells when a source leans on the includes of another.
option(QEL_COMPILE_JOINTLY "Compile several sources of tools and tests at a time" OFF)

function(qel_compile_jointly target)
  cmake_parse_arguments(PARSE_ARGV 1 jointly "" "" "EXCEPT")
  set_target_properties(${target} PROPERTIES UNITY_BUILD ${QEL_COMPILE_JOINTLY} UNITY_BUILD_BATCH_SIZE 6)
  set_source_files_properties(${jointly_EXCEPT} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  if(QEL_COMPILE_JOINTLY)
    # A fixture in an unnamed namespace is no risk in a file that nothing else includes.
    target_compile_options(${target} PRIVATE "$<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>")
  endif()
endfunction()
