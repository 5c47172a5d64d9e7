#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: external_platform.sh CMAKE CXX SOURCE_DIR BUILD_DIR
# Builds the library as for a device, without type information and exceptions, against a platform that is not in this
# tree: the installed stand-in takes its place.
set -eu
cmake=$1 cxx=$2 source=$3 build=$4

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build" --prefix "$work/installed"
platform=$work/installed/lib/qnl_privacy_indicator/platform
"$cmake" -G Ninja -S "$source" -B "$work/build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-fno-rtti -fno-exceptions" \
    -DQNL_PLATFORM=external -DQNL_PLATFORM_INCLUDE_DIRS="$platform/include" -DQNL_PLATFORM_LIBRARY_DIRS="$platform/lib"
"$cmake" --build "$work/build" --parallel 2
"$cmake" --install "$work/build" --prefix "$work/device"

if grep -rF "$source/platform" "$work/build/build.ninja"; then
    echo "the build for a device looks into platform/" >&2
    exit 1
fi
LD_LIBRARY_PATH=$platform/lib "$source/tests/library_symbols.sh" \
    "$work/device/lib/libqnl_privacy_indicator_service_intf.so" Debug no-rtti
