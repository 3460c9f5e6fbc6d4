# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# Sourced by the tests of the installed package.
#
# usage of each: TEST BUILD-DIRECTORY C++-COMPILER C++-FLAGS
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$1
compiler=$2
flags=$3

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
version=$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")$/\1/p' "$build/QelSharedMemoryConfigVersion.cmake")

installPackage() {
    cmake --install "$build" --prefix "$prefix" >"$scratch/install.log" || { cat "$scratch/install.log"; exit 1; }
    libraries=$(dirname "$(find "$prefix" -name 'libQelSharedMemory.so.1')")
}

# The next two build $here/consumer with the installed package.
buildByPkgConfig() {
    local package compilerFlags
    export PKG_CONFIG_PATH=$libraries/pkgconfig
    [ "$(pkg-config --modversion qelsharedmemory)" = "$version" ]
    eval "package=($(pkg-config --cflags --libs qelsharedmemory))" # quoted where it must be
    read -ra compilerFlags <<<"$flags"
    "$compiler" -std=c++17 "${compilerFlags[@]}" "$here/consumer/consumer.cpp" "${package[@]}" -o "$scratch/by-pkg-config"
}

buildByCMake() {
    {
        cmake -G Ninja -S "$here/consumer" -B "$scratch/by-cmake" -DCMAKE_PREFIX_PATH="$prefix" \
            -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" &&
            cmake --build "$scratch/by-cmake"
    } >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }
}

# Of the consumer.
runBuilt() { # PROGRAM
    "$here/../../tools/surroundings" "$1" >"$scratch/output" || exit $?
    diff -u "$here/consumer/expected-output.txt" "$scratch/output"
}
