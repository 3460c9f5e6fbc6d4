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

installPackage() {
    cmake --install "$build" --prefix "$prefix" >"$scratch/install.log" || { cat "$scratch/install.log"; exit 1; }
    libraries=$(dirname "$(find "$prefix" -name 'libQelSharedMemory.so.1')")
}

runConsumer() { # PROGRAM
    LD_LIBRARY_PATH=$libraries "$here/../../tools/surroundings" "$1" >"$scratch/output" || exit $?
    diff -u "$here/consumer/expected-output.txt" "$scratch/output"
}
