#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: installed_consumer.sh CMAKE CXX SOURCE_DIR BUILD_DIR
# Installs the build, moves the installed tree away, builds tests/consumer from it, by CMake and by pkg-config, and runs
# that, with no service and beside one.
set -eu
cmake=$1 cxx=$2 source=$3 build=$4

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM # By default, sh ends without its exit trap.
fail()
{
    echo "$1" >&2
    exit 1
}

# Nothing but the installed tree may lead anywhere.
unset LD_LIBRARY_PATH LIBRARY_PATH CPATH CPLUS_INCLUDE_PATH CMAKE_PREFIX_PATH PKG_CONFIG_PATH OHOS_BUS_ADDRESS
"$cmake" --install "$build" --prefix "$work/installed"
mv "$work/installed" "$work/moved"
cp -r "$source/tests/consumer" "$work/consumer"
configure()
{
    "$cmake" -G Ninja -S "$work/consumer" -B "$work/build" -DCMAKE_CXX_COMPILER="$cxx" \
        -DREADME="$source/README.md" -DCMAKE_PREFIX_PATH="$work/moved" -DFURTHER_COMPONENTS="$1"
}
if configure "testing;dvice" 2>"$work/output"; then
    fail "it finds a component that does not exist"
fi
grep -F "component dvice does not exist" "$work/output" || fail "it does not say which component does not exist"
configure "testing;tools"
"$cmake" --build "$work/build"

platform=$work/moved/lib/qnl_privacy_indicator/platform
if grep -rF -e "$source" -e "$build" "$work/moved" "$work/build/build.ninja" ||
    grep -rF --exclude='*.pc' -e "$work/installed" "$work/moved" "$work/build/build.ninja"; then
    fail "the installed package leads back to where it came from"
fi
for library in "$work"/moved/lib/*.so "$platform"/lib/*.so "$work"/moved/bin/indicator_*; do
    if readelf -d "$library" | grep -E 'R(UN)?PATH' | grep -vF '[$ORIGIN' || ldd "$library" | grep -F 'not found'; then
        fail "$library does not find its libraries relative to its own place"
    fi
done

ldd "$work/build/device_consumer" | grep -qF "$work/moved/lib/qnl_privacy_indicator/device/libqnl_" ||
    fail "a program for the device's variant loads another one"
export PKG_CONFIG_PATH="$work/moved/lib/pkgconfig"
[ "$(pkg-config --variable=prefix qnl_privacy_indicator_testing)" = "$work/installed" ] ||
    fail "pkg-config does not know where the tree was installed"
pkg-config --define-prefix --cflags --libs qnl_privacy_indicator_testing >"$work/flags"
xargs "$cxx" -std=c++17 "$work/build/main.cpp" -o "$work/build/module_consumer" <"$work/flags"
rm -r "$PKG_CONFIG_PATH" # Where a program runs, it may be missing.
for program in consumer module_consumer; do
    if "$work/build/$program" >"$work/output"; then
        fail "$program found a service where none is"
    fi
    echo "result -1, 0 active indicators" | diff - "$work/output" || fail "with no service, it prints something else"
done

"$work/moved/bin/indicator_ctl" --version | sed s/indicator_ctl/ohos_bus/ >"$work/output"
"$platform/bin/ohos_bus" --version | diff - "$work/output" || fail "ohos_bus is of another version than indicator_ctl"

# The service says "ready" once it can be found, or ends and closes the pipe.
mkfifo "$work/said"
# shellcheck disable=SC2016
"$platform/bin/ohos_bus" sh -euc '
    "$1/moved/bin/indicator_service" </dev/null >"$1/said" &
    trap "kill $!" EXIT
    trap "exit 1" HUP INT TERM
    read -r ready <"$1/said"
    "$1/moved/bin/indicator_ctl" on camera
    "$1/build/consumer" >"$1/output"
    trap - EXIT
    kill $!
    wait $!
' sh "$work" || fail "it has no answer from a service"
echo "result 0, 1 active indicators" | diff - "$work/output" || fail "beside a service, it prints something else"
