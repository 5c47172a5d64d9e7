#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: guest.sh CMAKE CXX SOURCE_DIR BUILD_DIR [build]
# The project as a part of another one: what it must leave alone there (see guest/CMakeLists.txt). With `build` it is
# built there too, from a copy of the source, and must install the same bytes as BUILD_DIR.
set -eu
cmake=$1 cxx=$2 source=$3 build=$4 mode=${5-}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM # By default, sh ends without its exit trap.
fail()
{
    echo "$1" >&2
    exit 1
}

cp -r "$source/tests/guest" "$work/host"
mkdir "$work/guest"
tar -C "$source" --exclude=./build --exclude=./.git -c . | tar -C "$work/guest" -x
configure()
{
    "$cmake" -G Ninja -S "$work/host" -B "$work/build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DGUEST="$work/guest" "$@"
}
configure
if grep -e '-Werror' "$work/build/compile_commands.json"; then
    fail "a guest's warnings are errors"
fi
if grep -F 'install(' "$work/build/_deps/qnl_privacy_indicator-build/cmake_install.cmake"; then
    fail "a guest installs itself unasked"
fi
[ "$mode" = build ] || exit 0

configure -DQNL_INSTALL=ON -DQNL_BUILD_EXAMPLES=ON
"$cmake" --build "$work/build" --parallel 2
if "$work/build/host" >"$work/output"; then
    fail "it found a service where none is"
fi
echo "result -1, 0 active indicators" | diff - "$work/output" || fail "the host prints something else"
DESTDIR=$work/from_host "$cmake" --install "$work/build" --prefix /qnl
DESTDIR=$work/from_here "$cmake" --install "$build" --prefix /qnl
# The title of a man page has the month in which it was made.
diff -r -I '^\.TH ' "$work/from_host" "$work/from_here" || fail "two builds install different bytes"
