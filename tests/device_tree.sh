#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: device_tree.sh CMAKE CXX SOURCE_DIR BUILD_DIR [build]
# BUILD.gn compiles what CMake compiles, and bundle.json names the version and the public headers. With `build` both
# variants are built by gn, in a tree like a device's, with the installed stand-in in the place of the platform's parts.
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

cd "$source"
# The gate is chosen by an argument.
sed -nE 's,.*"file": "'"$source"'/((client|composer|ipc|model|util)/.*)".*,\1,p' "$build/compile_commands.json" |
    grep -v /gate_ | sort -u >"$work/cmake"
sed -nE 's/^ *"(.*\.cpp)",$/\1/p' BUILD.gn | grep -v /gate_ | sort >"$work/gn"
diff "$work/cmake" "$work/gn" || fail "BUILD.gn (>) and CMake (<) compile different sources"
ls interfaces >"$work/headers"
sed -nE 's/^ *"(.*\.h)",?$/\1/p' bundle.json | diff "$work/headers" - || fail "bundle.json (>) lacks headers (<)"
version=$(sed -nE 's/^#define PRIVACY_INDICATOR_VERSION (.*)/\1/p' interfaces/privacy_indicator_version.h)
grep -qF "\"version\": $version" bundle.json || fail "bundle.json has another version than $version"
[ "$mode" = build ] || exit 0

"$cmake" --install "$build" --prefix "$work/installed" >"$work/log"
platform=$work/installed/lib/qnl_privacy_indicator/platform
cp -r tests/device_tree "$work/tree"
mkdir "$work/tree/korvane"
ln -s "$source" "$work/tree/korvane/qnl_privacy_indicator"
out=$work/tree/out
for variant in device emulator; do
    gn gen "$out" --root="$work/tree" --fail-on-unused-args \
        --args="cxx=\"$cxx\" platform_dir=\"$platform\" qnl_privacy_indicator_variant=\"$variant\""
    ninja -C "$out"
    LD_LIBRARY_PATH=$platform/lib tests/library_symbols.sh "$out/libqnl_privacy_indicator_service_intf.so" Debug no-rtti
    mv "$out/libqnl_privacy_indicator_service_intf.so" "$work/$variant.so"
done
if cmp -s "$work/device.so" "$work/emulator.so"; then
    fail "both variants are the same"
fi
