# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# What libraries and programs need once they are installed.
option(QEL_INSTALL_RUNPATH
  "Give installed libraries, programs and the pkg-config file a RUNPATH, so that they work from any prefix" ON)

# qel_install_runpath(<target> <directory>)
#
# The target, once installed in the directory, finds the libraries relative to itself. So the installed tree can be
# moved. Packages of a distribution need no RUNPATH.
function(qel_install_runpath target directory)
  if(QEL_INSTALL_RUNPATH)
    file(RELATIVE_PATH way "${directory}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    string(REGEX REPLACE "/$" "" runpath "$ORIGIN/${way}")
    set_property(TARGET ${target} APPEND PROPERTY INSTALL_RPATH "${runpath}")
    target_link_options(${target} PRIVATE LINKER:--enable-new-dtags)
  endif()
endfunction()

# qel_install_tool(<program> [MANUAL <page>] [COMPLETION <argument>...])
#
# A program for users, with its manual page and the completion scripts for bash, fish and zsh, which the program prints
# itself. COMPLETION: the arguments before the name of the shell; --completion by default (see
# tools/common/completion/Completion.h).
function(qel_install_tool program)
  cmake_parse_arguments(PARSE_ARGV 1 tool "" "MANUAL" "COMPLETION")
  if(NOT tool_COMPLETION)
    set(tool_COMPLETION --completion)
  endif()
  qel_install_runpath(${program} "${CMAKE_INSTALL_FULL_BINDIR}")
  install(TARGETS ${program} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  if(tool_MANUAL)
    install(FILES "${tool_MANUAL}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
  endif()

  set(places
    "bash:bash-completion/completions/${program}"
    "fish:fish/vendor_completions.d/${program}.fish"
    "zsh:zsh/vendor-completions/_${program}")
  set(scripts)
  foreach(place IN LISTS places)
    string(REGEX MATCH "^([a-z]+):(.*)/(.*)$" place "${place}")
    set(shell "${CMAKE_MATCH_1}")
    set(directory "${CMAKE_MATCH_2}")
    set(name "${CMAKE_MATCH_3}")
    set(script "${PROJECT_BINARY_DIR}/completions/${shell}/${name}")
    file(MAKE_DIRECTORY "${PROJECT_BINARY_DIR}/completions/${shell}")
    add_custom_command(OUTPUT "${script}"
      COMMAND ${program} ${tool_COMPLETION} ${shell} > "${script}"
      DEPENDS ${program}
      VERBATIM)
    list(APPEND scripts "${script}")
    install(FILES "${script}" DESTINATION "${CMAKE_INSTALL_DATADIR}/${directory}" COMPONENT tools)
  endforeach()
  add_custom_target(${program}-completions ALL DEPENDS ${scripts})

  if(NOT TARGET installed-tools)
    add_custom_target(installed-tools)
  endif()
  add_dependencies(installed-tools ${program} ${program}-completions)
endfunction()
