#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: external_platform.sh CMAKE CXX SOURCE_DIR BUILD_DIR [STANDARD_LIBRARY_FLAG]
# Builds the library as for a device, and without exceptions, against a platform that is not in this tree: the installed
# stand-in takes its place. Its interface, and what it needs of the platform, are as abi/ says. With a standard library
# that is not the compiler's own, that of BUILD_DIR, its names differ, and are not compared.
set -eu
cmake=$1 cxx=$2 source=$3 build=$4 flag=${5-}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM # By default, sh ends without its exit trap.

"$cmake" --install "$build" --prefix "$work/installed"
platform=$work/installed/lib/qnl_privacy_indicator/platform
"$cmake" -G Ninja -S "$source" -B "$work/build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS="-fno-exceptions $flag" \
    -DQNL_PLATFORM=external -DQNL_PLATFORM_INCLUDE_DIRS="$platform/include" -DQNL_PLATFORM_LIBRARY_DIRS="$platform/lib"
"$cmake" --build "$work/build" --parallel 2
"$cmake" --install "$work/build" --prefix "$work/device"

if grep -rF "$source/platform" "$work/build/build.ninja"; then
    echo "the build for a device looks into platform/" >&2
    exit 1
fi

# A program that is built from what this installs.
configure()
{
    "$cmake" -G Ninja -S "$source/tests/consumer" -B "$work/consumer" -DCMAKE_CXX_COMPILER="$cxx" \
        -DREADME="$source/README.md" \
        -DCMAKE_CXX_FLAGS="$flag" -DCMAKE_PREFIX_PATH="$work/device" "$@"
}
if configure 2>"$work/output" || ! grep -F QNL_PLATFORM_INCLUDE_DIRS "$work/output"; then
    echo "the installed package does not say which variable it lacks" >&2
    exit 1
fi
configure -DQNL_PLATFORM_INCLUDE_DIRS="$platform/include" -DQNL_PLATFORM_LIBRARY_DIRS="$platform/lib"
"$cmake" --build "$work/consumer"
LD_LIBRARY_PATH=$platform/lib "$work/consumer/device_consumer" >"$work/output" || true
echo "result -1, 0 active indicators" | diff - "$work/output"

library=$work/device/lib/libqnl_privacy_indicator_service_intf.so
nm -D --undefined-only "$library" | awk '$2 !~ /@/ && $1 == "U" { print $2 }' | LC_ALL=C sort >"$work/needed"
if grep '^_ZT[IS]' "$work/needed"; then
    echo "the library needs type information of the platform, which it does not export" >&2
    exit 1
fi
[ -z "$flag" ] || exit 0

LD_LIBRARY_PATH=$platform/lib "$source/tests/library_symbols.sh" "$library" Debug no-rtti
# What the kept files say, or, on demand, shall say.
kept=$source/abi
if [ "${QNL_ABI_UPDATE-}" ]; then
    { echo "# SPDX-License-Identifier: Apache-2.0" && cat "$work/needed"; } >"$kept/platform_symbols.txt"
fi
grep -v '^#' "$kept/platform_symbols.txt" | diff - "$work/needed" || {
    echo "the library needs other symbols of the platform than abi/platform_symbols.txt says, see docs/abi.md" >&2
    exit 1
}
if [ "$(uname -m)" != x86_64 ]; then
    echo "abi/ has the layouts for x86-64: those of $(uname -m) are not compared"
    exit 0
fi

# All that the headers declare, also what no function of the library uses and its debug information would leave out.
for header in "$source"/interfaces/*.h; do
    printf '#include "%s"\n' "${header##*/}"
done | g++ -std=c++17 -fno-rtti -DOHOS_PLATFORM -gdwarf-5 -fno-eliminate-unused-debug-types -femit-class-debug-always \
    -I "$source/interfaces" -isystem "$platform/include" -x c++ -c - -o "$work/classes.o"
readelf --debug-dump=info "$work/classes.o" >"$work/debug"
awk -f "$kept/classes.awk" "$work/debug" | LC_ALL=C sort -s -t "$(printf '\t')" -k1,1 -k2,2n -k3,3n | cut -f4- |
    c++filt | sed -E 's/OHOS::Korvane::Quenlar::PrivacyIndicator:://g
        s/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g
        s/, std::allocator<[^<>]*> >/>/g' >"$work/classes"
if [ "${QNL_ABI_UPDATE-}" ]; then
    { echo "# SPDX-License-Identifier: Apache-2.0" && cat "$work/classes"; } >"$kept/classes.txt"
fi
grep -v '^#' "$kept/classes.txt" | diff -U 0 -F '^class' - "$work/classes" || {
    echo "the classes differ from abi/classes.txt: after ./dev abi, git diff abi/ shows how; see docs/abi.md" >&2
    exit 1
}

if ! command -v abidiff >/dev/null; then
    echo "abidiff is not here: the functions' types are not compared with abi/device.xml"
    exit 0
fi
if [ "${QNL_ABI_UPDATE-}" ]; then
    abidw --headers-dir "$source/interfaces" --drop-private-types --suppressions "$kept/outside.ini" \
        --exported-interfaces-only --drop-undefined-syms --no-show-locs --no-comp-dir-path --no-corpus-path \
        --no-write-default-sizes --type-id-style hash "$library" |
        sed -E "1a <!-- SPDX-License-Identifier: Apache-2.0 -->
            s| path='[^']*/([a-z]+/[^/']+)'| path='\\1'|" >"$kept/device.xml"
fi
abidiff --harmless --headers-dir2 "$source/interfaces" --drop-private-types --suppressions "$kept/outside.ini" \
    --exported-interfaces-only "$kept/device.xml" "$library" || {
    echo "the interface differs from abi/device.xml: after ./dev abi, git diff abi/ shows how; see docs/abi.md" >&2
    exit 1
}
