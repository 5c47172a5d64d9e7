#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# usage: guide.sh CMAKE CXX SOURCE_DIR BUILD_DIR
# Builds the programs of docs/guide.md from an installed tree, as the page says, and runs them.
set -euo pipefail
cmake=$1 cxx=$2 source=$3 build=$4

work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT
fail()
{
    printf '%s\n' "$1" >&2
    head -n 50 "$work"/*.output >&2 || true
    exit 1
}

# await PROGRAM LINE: waits until the program has printed the line.
await()
{
    timeout 30 sh -c 'tail -n +1 -F "$1" 2>/dev/null | grep -qxF -m 1 "$2"' sh "$work/$1.output" "$2" ||
        fail "$1 does not print: $2"
}

unset LD_LIBRARY_PATH CMAKE_PREFIX_PATH OHOS_BUS_ADDRESS
export HILOG_LEVEL=W
"$cmake" --install "$build" --prefix "$work/installed" >/dev/null
mkdir "$work/guide"
awk -v folder="$work/guide" '
    /^```cmake$/ { file = folder "/CMakeLists.txt"; next }
    /^```cpp / { file = folder "/" $2; next }
    /^```/ { file = "" }
    file != "" { print > file }' "$source/docs/guide.md"
"$cmake" -G Ninja -S "$work/guide" -B "$work/build" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_PREFIX_PATH="$work/installed" -DCMAKE_CXX_STANDARD=17 >/dev/null
"$cmake" --build "$work/build" --parallel 2

"$work/build/app_test" >"$work/app_test.output" || fail "the app's test fails"

# The bus ends with this script, which holds the standard input of the command beside it.
mkfifo "$work/switches" "$work/bus" "$work/held"
exec 4<>"$work/held"
# shellcheck disable=SC2016
"$work/installed/lib/qnl_privacy_indicator/platform/bin/ohos_bus" \
    sh -c 'echo "$OHOS_BUS_ADDRESS" >"$1"; exec cat' sh "$work/bus" <"$work/held" 4>&- &
bus=$!
read -r OHOS_BUS_ADDRESS <"$work/bus"
export OHOS_BUS_ADDRESS
"$work/build/app" >"$work/app.output" 2>&1 4>&- &
app=$!
await app "no service yet"
"$work/build/service" <"$work/switches" >"$work/service.output" 2>&1 4>&- &
service=$!
exec 3>"$work/switches"
await service "ready"
"$work/build/app" >"$work/second.output" 2>&1 3>&- 4>&- &
second=$!
echo >&3
await app "sensor 0 is on"
kill -TERM $second
wait $second || fail "an app does not end as it should"
exec 3>&-
await app "sensor 0 is off"
wait $service || fail "the service does not end as it should"
kill -TERM $app
wait $app || fail "the app does not end as it should"
exec 4>&-
wait $bus
