#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# usage: run.sh BUILD check | run.sh BUILD record | run.sh BUILD report PAGE
# Measures a build of the `bench` preset. `record` keeps the figures that are the same at every run in recorded.txt,
# `check` compares them with those and fails at a step back, and `report` measures everything, prints the tables and
# writes them to PAGE. A figure is a line "table|row|column|value"; smaller is better in every table of repeatable ones.
set -euo pipefail
folder=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
build=$(realpath "$1")
programs=$build/bench
recorded=$folder/recorded.txt
work=$(mktemp -d "${TMPDIR:-/tmp}/bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
readonly TOLERATED=3 # Per cent that a figure may be worse than it was recorded.
unset OHOS_BUS_ADDRESS

# Runs a command beside a bus of its own, whose log level is $1.
on_bus()
{
    local level=$1
    shift
    # As a child of a shell, since a tracer would wait for the bus, too, and that for the tracer.
    HILOG_LEVEL=$level timeout 120 "$folder/../platform/samgr/bin/ohos_bus" bash -c '"$@"; exit $?' - "$@" </dev/null
}

# The instructions of each request, as a multiple of those of its parcel operations written by hand.
count_instructions()
{
    local column=$1 level=$2
    rm -f "$work"/instructions*
    HILOG_LEVEL=$level valgrind -q --tool=callgrind --collect-atstart=no --callgrind-out-file="$work/instructions" \
        "$programs/bench_requests" 2>/dev/null || return
    awk -v column="$column" '
        /^desc: Trigger: Client Request: / { side = $5; name = $6; if (side == "hand") names[++n] = name }
        /^totals: / { total[side, name] = $2 }
        END { for (i = 1; i <= n; i++)
            printf "instructions|%s|%s|%.3f\n", names[i], column, total["library", names[i]] / total["hand", names[i]] }
        ' $(ls -v "$work"/instructions.*)
}

# The system calls of one request, on either side: those between two marks, of which the first 20 are left out.
count_system_calls()
{
    local row=$1 request=$2 side mark file
    rm -f "$work"/trace.*
    on_bus OFF strace -qq -ff -o "$work/trace" "$programs/bench_calls" trace "$request" 120
    while read -r side mark; do
        file=$(grep -l "^$mark(" "$work"/trace.*)
        awk -v figure="system calls|$row|$side" -v mark="^$mark\\\\(" '
            $0 ~ mark { if (++marks == 21) first = lines; last = lines; next }
            { lines++ }
            END { printf "%s|%.3f\n", figure, (last - first) / (marks - 21) }' "$file"
    done <<<"client getppid
service getsid"
}

# What a program instructs the processor from its start to its end, loading included.
count_all_instructions()
{
    env -i valgrind -q --tool=callgrind --callgrind-out-file="$work/all" "$@"
    awk '/^totals: / { print $2 }' "$work/all"
}

describe_library()
{
    local library=$build/lib/device/libqnl_privacy_indicator_service_intf.so
    strip -o "$work/stripped" "$library"
    echo "library|relocations||$(readelf -rW "$library" | grep -c '^[0-9a-f]\{16\}')"
    echo "library|static initialisers||$((
        16#$(readelf -SW "$library" | sed -n 's/.* \.init_array *[^ ]* *[^ ]* *[^ ]* *\([^ ]*\).*/\1/p') / 8))"
    echo "library|bytes, stripped||$(stat -c %s "$work/stripped")"
    echo "library|instructions to load it and the platform||$((
        $(count_all_instructions "$programs/bench_first_answer" load) -
        $(count_all_instructions "$programs/bench_empty")))"
}

measure_repeatable()
{
    count_instructions "logging off" OFF
    count_instructions "logging on" I
    on_bus OFF "$programs/bench_calls" allocations
    count_system_calls TurnOffIndicator TurnOffIndicator
    count_system_calls "GetPrivacyEventDetails, 1,000 records" GetPrivacyEventDetails
    describe_library
}

record()
{
    {
        echo "# SPDX-License-Identifier: Apache-2.0"
        echo "# The repeatable figures, written by ./dev bench --record."
        cat "$work/figures"
    } >"$recorded"
    echo "Recorded $(grep -c '|' "$recorded") figures."
}

compare()
{
    awk -F'|' -v tolerated=$TOLERATED '
        /^#/ { next }
        { key = $1 ": " $2 ($3 == "" ? "" : ", " $3) }
        NR == FNR { before[key] = $4; next }
        !(key in before) { print "not recorded yet: " key; bad++; next }
        { seen[key] = 1 }
        $4 > before[key] * (1 + tolerated / 100) + 1e-9 { printf "worse: %s: %s, was %s\n", key, $4, before[key]; bad++ }
        $4 < before[key] * (1 - tolerated / 100) { printf "better: %s: %s, was %s\n", key, $4, before[key]; better++ }
        END {
            for (key in before)
                if (!(key in seen)) { print "not measured: " key; bad++ }
            printf "%d figures, %d better, %d worse or missing\n", FNR, better, bad
            if (better) print "Keep what was won by ./dev bench --record."
            exit bad > 0
        }' "$recorded" "$work/figures"
}

measure_repeatable >"$work/figures"
case $2 in
record) record ;;
check) compare ;;
esac
