# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# The target "docs": HTML of the installed headers in docs/html of the build, and the check that each exported
# function is documented. Not part of the default build. Without Doxygen there is no such target.
find_package(Doxygen QUIET OPTIONAL_COMPONENTS dot)
if(NOT DOXYGEN_FOUND)
  return()
endif()

get_property(QEL_API_HEADERS GLOBAL PROPERTY QEL_API_HEADERS)
set(QEL_DOCS_DIR "${PROJECT_BINARY_DIR}/docs")
set(pages "${PROJECT_SOURCE_DIR}/docs/doxygen/mainpage.md")
if(EXISTS "${PROJECT_SOURCE_DIR}/docs/integrate.md")
  list(APPEND pages "${PROJECT_SOURCE_DIR}/docs/integrate.md")
endif()
list(TRANSFORM QEL_API_HEADERS REPLACE ".+" "\"\\0\"" OUTPUT_VARIABLE quoted_headers)
list(TRANSFORM pages REPLACE ".+" "\"\\0\"" OUTPUT_VARIABLE quoted_pages)
list(JOIN quoted_headers " " QEL_API_HEADER_PATHS)
list(JOIN quoted_pages " " QEL_DOCS_INPUT)
string(APPEND QEL_DOCS_INPUT " ${QEL_API_HEADER_PATHS}")
# Of the package doxygen-awesome-css; without it the HTML has Doxygen's own style.
find_file(QEL_DOCS_STYLESHEET doxygen-awesome.css PATH_SUFFIXES share/doxygen-awesome-css)
if(NOT QEL_DOCS_STYLESHEET)
  set(QEL_DOCS_STYLESHEET "")
endif()
set(QEL_DOCS_HAVE_DOT NO)
if(TARGET Doxygen::dot)
  set(QEL_DOCS_HAVE_DOT YES)
endif()
configure_file(docs/doxygen/Doxyfile.in docs/Doxyfile @ONLY)
configure_file(docs/doxygen/Doxyfile-xml.in docs/Doxyfile-xml @ONLY)

add_custom_target(docs
  COMMAND Doxygen::doxygen "${QEL_DOCS_DIR}/Doxyfile"
  COMMAND Doxygen::doxygen "${QEL_DOCS_DIR}/Doxyfile-xml"
  COMMAND "${PROJECT_SOURCE_DIR}/docs/doxygen/check-documented"
          "${PROJECT_SOURCE_DIR}/tests/package/exported-symbols.txt" "${QEL_DOCS_DIR}/xml"
  COMMENT "HTML of the installed headers: ${QEL_DOCS_DIR}/html/index.html"
  VERBATIM)
