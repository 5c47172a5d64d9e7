#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: installed_consumer.sh CMAKE CXX SOURCE_DIR BUILD_DIR
# Installs the build, moves the installed tree away, builds tests/consumer from it and runs that, with no service and
# beside one.
set -eu
cmake=$1 cxx=$2 source=$3 build=$4

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail()
{
    echo "$1" >&2
    exit 1
}

# Nothing but the installed tree may lead anywhere.
unset LD_LIBRARY_PATH LIBRARY_PATH CPATH CPLUS_INCLUDE_PATH CMAKE_PREFIX_PATH OHOS_BUS_ADDRESS
"$cmake" --install "$build" --prefix "$work/installed"
mv "$work/installed" "$work/moved"
cp -r "$source/tests/consumer" "$work/consumer"
"$cmake" -G Ninja -S "$work/consumer" -B "$work/build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$work/moved"
"$cmake" --build "$work/build"

platform=$work/moved/lib/qnl_privacy_indicator/platform
if grep -rF -e "$source" -e "$work/installed" "$work/moved/lib/cmake" "$work/build/build.ninja"; then
    fail "the installed package leads back to where it came from"
fi
for library in "$work"/moved/lib/*.so "$platform"/lib/*.so; do
    if readelf -d "$library" | grep -E 'R(UN)?PATH' | grep -vF '[$ORIGIN' || ldd "$library" | grep -F 'not found'; then
        fail "$library does not find its libraries relative to its own place"
    fi
done

ldd "$work/build/device_consumer" | grep -qF "$work/moved/lib/qnl_privacy_indicator/device/libqnl_" ||
    fail "a program for the device's variant loads another one"
if "$work/build/consumer" >"$work/output"; then
    fail "it found a service where none is"
fi
echo "result -1, 0 active indicators" | diff - "$work/output" || fail "with no service, it prints something else"

# The service says "ready" once it can be found, or ends and closes the pipe.
mkfifo "$work/said"
# shellcheck disable=SC2016
"$platform/bin/ohos_bus" sh -euc '
    "$2/examples/indicator_service" </dev/null >"$1/said" &
    read -r ready <"$1/said"
    "$2/examples/indicator_ctl" on camera
    "$1/build/consumer" >"$1/output"
    kill $!
    wait $!
' sh "$work" "$build" || fail "it has no answer from a service"
echo "result 0, 1 active indicators" | diff - "$work/output" || fail "beside a service, it prints something else"
