# SPDX-FileCopyrightText: the libQelSharedMemory authors
# SPDX-License-Identifier: Apache-2.0

# Sourced by the checks of the Debian packages. They try what tools/make-packages wrote to build/packages/ARCHITECTURE, and
# need the packages that "tools/install-packages packages" installs. Each prints what is wrong and then ends with 1.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../../.."
native=$(dpkg --print-architecture)
architecture=${1-$native}
packages=build/packages/$architecture
ls "$packages"/*.deb >/dev/null 2>&1 || {
    echo "there are no packages in $packages; build them with tools/make-packages $architecture" >&2
    exit 1
}
scratch=$(mktemp -d build/packages-check-XXXXXX)
trap 'rm -rf "$scratch"' EXIT

# The files of the packages that users install, without those of the debugging symbols.
debs() { # FOLDER
    find "$1" -name '*.deb' ! -name '*-dbgsym_*' | sort
}
