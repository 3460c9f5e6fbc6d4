# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# What the library stands on; each becomes an imported target.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.55 REQUIRED COMPONENTS thread system chrono)
pkg_check_modules(LOG4CPP REQUIRED IMPORTED_TARGET log4cpp)
pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0 gio-unix-2.0)
