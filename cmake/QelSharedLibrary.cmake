# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# The shared library, linked from its parts, and everything that is installed with it.
include(CMakePackageConfigHelpers)

add_library(QelSharedMemory SHARED
  $<TARGET_OBJECTS:qel-region>
  $<TARGET_OBJECTS:qel-format>
  $<TARGET_OBJECTS:qel-reader>
  $<TARGET_OBJECTS:qel-states>
  $<TARGET_OBJECTS:qel-writer>)
add_library(Qel::SharedMemory ALIAS QelSharedMemory)
set_target_properties(QelSharedMemory PROPERTIES
  EXPORT_NAME SharedMemory
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINKER_LANGUAGE CXX)
target_include_directories(QelSharedMemory INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
  $<BUILD_INTERFACE:${QEL_GENERATED_INCLUDE_DIR}>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/qel>)
target_compile_features(QelSharedMemory INTERFACE cxx_std_17)
target_compile_options(QelSharedMemory INTERFACE "$<BUILD_INTERFACE:${QEL_DOMAIN_FIRST}>")
# The installed package names Qel::Domain, whatever target of this build stands behind it; $<1:...> keeps CMake from
# looking it up.
target_link_libraries(QelSharedMemory
  PUBLIC $<BUILD_INTERFACE:Qel::Domain> $<INSTALL_INTERFACE:$<1:Qel::Domain>>
  PRIVATE $<BUILD_INTERFACE:qel-hardwaremanager> $<BUILD_INTERFACE:PkgConfig::LOG4CPP>
          $<BUILD_INTERFACE:PkgConfig::GIO> $<BUILD_INTERFACE:Boost::thread> $<BUILD_INTERFACE:Boost::chrono>
          $<BUILD_INTERFACE:Boost::system> $<BUILD_INTERFACE:Threads::Threads>)
target_link_options(QelSharedMemory PRIVATE "LINKER:--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map")
# The library is never unloaded: GLib keeps the types that the library has registered and would call code that is gone. A
# second load could not register them again.
target_link_options(QelSharedMemory PRIVATE LINKER:-z,nodelete)
set_property(TARGET QelSharedMemory APPEND PROPERTY LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/exports.map")

qel_install_runpath(QelSharedMemory "${CMAKE_INSTALL_FULL_LIBDIR}")
install(TARGETS QelSharedMemory EXPORT QelSharedMemoryTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development)
install(FILES "${QEL_GENERATED_INCLUDE_DIR}/region/QelExport.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qel/region" COMPONENT development)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/QelSharedMemory")
install(EXPORT QelSharedMemoryTargets NAMESPACE Qel:: DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file(cmake/QelSharedMemoryConfig.cmake.in QelSharedMemoryConfig.cmake
  INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file(QelSharedMemoryConfigVersion.cmake COMPATIBILITY SameMajorVersion)
# The .pc file finds the prefix from its own place, so the installed tree can be moved.
file(RELATIVE_PATH QEL_PREFIX_FROM_PC "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
# A program that is linked by it finds the library where it was found for linking.
set(QEL_PC_RUNPATH "")
if(QEL_INSTALL_RUNPATH)
  set(QEL_PC_RUNPATH " -Wl,-rpath,\${libdir}")
endif()
configure_file(cmake/qelsharedmemory.pc.in qelsharedmemory.pc @ONLY)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/QelSharedMemoryConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/QelSharedMemoryConfigVersion.cmake"
  DESTINATION "${package_dir}" COMPONENT development)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/qelsharedmemory.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
