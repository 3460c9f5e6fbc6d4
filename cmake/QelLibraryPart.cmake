# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# qel_library_part(<name> SOURCES ... HEADERS ... [LINK ...])
#
# One folder of the library as an object library "qel-<name>": compiled once, used by the shared library and by the
# tests of that folder. HEADERS are the installed ones. No code of it may run before main or after its end; only Clang
# can check that.
include(GenerateExportHeader)

set(QEL_GENERATED_INCLUDE_DIR "${PROJECT_BINARY_DIR}/include")

function(qel_library_part name)
  cmake_parse_arguments(PARSE_ARGV 1 part "" "" "SOURCES;HEADERS;LINK")
  add_library(qel-${name} OBJECT ${part_SOURCES})
  set_target_properties(qel-${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(qel-${name} PUBLIC "${PROJECT_SOURCE_DIR}" "${QEL_GENERATED_INCLUDE_DIR}")
  # Calls into other libraries use no stub. Calls inside this library are direct, since exported functions are not meant
  # to be replaced.
  target_compile_options(qel-${name} PRIVATE -fno-plt -fno-semantic-interposition
    "$<$<CXX_COMPILER_ID:Clang>:-Wglobal-constructors;-Wexit-time-destructors>")
  qel_guide_fuzzers(qel-${name})
  target_link_libraries(qel-${name} PUBLIC Qel::Domain PkgConfig::LOG4CPP ${part_LINK})
  list(TRANSFORM part_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/" OUTPUT_VARIABLE paths)
  set_property(GLOBAL APPEND PROPERTY QEL_API_HEADERS ${paths}) # for QelDocs
  foreach(header IN LISTS part_HEADERS)
    install(FILES ${header} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qel/${name}" COMPONENT development)
  endforeach()
endfunction()
