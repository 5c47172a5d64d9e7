#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# usage: run.sh BUILD check | run.sh BUILD record | run.sh BUILD report PAGE
# Measures a build as it ships. `record` keeps the figures that are the same at every run in recorded.txt, `check`
# compares them with those and fails at a step back, and `report`, which needs the peers, measures everything, prints the
# tables and writes them to PAGE. A figure is a line "table|row|column|value"; of the repeatable ones, smaller is better.
set -euo pipefail
folder=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
build=$(realpath "$1")
programs=$build/bench
recorded=$folder/recorded.txt
work=$(mktemp -d "${TMPDIR:-/tmp}/bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
toolchain="$(uname -m), $(. /etc/os-release && echo "$NAME $VERSION_ID"), g++ $(g++ -dumpfullversion)"
readonly toolchain # With another one, the figures are others.
readonly TOLERATED=3 # Per cent that a figure may be worse than it was recorded.
unset OHOS_BUS_ADDRESS

# Runs a command beside a bus of its own, whose log level is $1.
on_bus()
{
    local level=$1
    shift
    # As a child of a shell, since a tracer would wait for the bus, too, and that for the tracer.
    HILOG_LEVEL=$level timeout 300 "$folder/../platform/samgr/bin/ohos_bus" bash -c '"$@"; exit $?' - "$@" </dev/null
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

# The system calls of one request, on either side: those between two marks, as most have them, but for the first 20. On
# a busy machine a request that waits long sets its time-out anew.
count_system_calls()
{
    local row=$1 request=$2 side mark file
    rm -f "$work"/trace.*
    on_bus OFF strace -qq -ff -o "$work/trace" "$programs/bench_calls" trace "$request" 120
    while read -r side mark; do
        file=$(grep -l "^$mark(" "$work"/trace.*)
        awk -v figure="system calls|$row|$side" -v mark="^$mark\\\\(" '
            $0 ~ mark { if (++marks > 21 && ++count[lines] > count[most]) most = lines; lines = 0; next }
            { lines++ }
            END { printf "%s|%d\n", figure, most }' "$file"
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
    on_bus OFF "$programs/bench_calls" memory
    count_system_calls TurnOffIndicator TurnOffIndicator
    describe_library
}

record()
{
    {
        echo "# SPDX-License-Identifier: Apache-2.0"
        echo "# The repeatable figures, written by ./dev bench --record, with"
        echo "# $toolchain"
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

# Figures that follow from others.
derive()
{
    awk -F'|' '
        { value[$1, $2, $3] = $4 }
        $1 == "instructions" && $3 == "logging off" && $4 > most { most = $4 }
        END {
            print "instructions|the most|logging off|" most
            split("switch event", kinds, " ")
            for (i = 1; i <= 2; i++)
                print "growth|a listener of 10,000 beside one of 10|" kinds[i] "|" \
                    value["dispatch, nanoseconds", "10000", kinds[i]] / 1000 / \
                    value["dispatch, nanoseconds", "10", kinds[i]]
            query = "query, microseconds"
            print "growth|a record of 2,000 beside one of 1,000|query|" \
                value[query, "library", "2,000"] / 2 / value[query, "library", "1,000"]
        }' "$work/figures"
}

# The processor time of each benchmark, whose name is table/row/column.
measure_local()
{
    HILOG_LEVEL=OFF "$programs/bench_local" --benchmark_format=csv --benchmark_min_time=0.02 \
        --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true 2>/dev/null |
        sed -n 's|^"\([^/"]*\)/\([^/"]*\)/\([^/"_]*\)[^"]*_median",[^,]*,[^,]*,\([^,]*\),.*|\1\|\2\|\3\|\4|p' | sort -V
}

# Prints a table of the figures.
tabulate()
{
    awk -F'|' -v table="$1" '
        function text(value) {
            return value == "" ? "" : value == int(value) || value >= 1000 ? sprintf("%d", value) \
                : value >= 100 ? sprintf("%.0f", value) : value >= 10 ? sprintf("%.1f", value) : sprintf("%.2f", value)
        }
        $1 != table { next }
        !($2 in isRow) { isRow[$2] = 1; rows[++rowCount] = $2 }
        !($3 in isColumn) { isColumn[$3] = 1; columns[++columnCount] = $3 }
        { value[$2, $3] = $4 }
        END {
            line = "| |"; rule = "|---|"
            for (j = 1; j <= columnCount; j++) { line = line " " columns[j] " |"; rule = rule "---:|" }
            print line; print rule
            for (i = 1; i <= rowCount; i++) {
                line = "| " rows[i] " |"
                for (j = 1; j <= columnCount; j++) line = line " " text(value[rows[i], columns[j]]) " |"
                print line
            }
        }' "$work/figures"
}

# Prints which aims are met, and why others are not.
judge()
{
    echo "| aim | at most | measured | |"
    echo "|---|---:|---:|---|"
    awk -F'|' '
        /^#/ { next }
        NR == FNR { value[$1, $2, $3] = $4; next }
        { measured = value[$1, $2, $3]
          printf "| %s | %s | %s | %s |\n", $5, $4 + 0, measured == "" ? "-" : sprintf("%.4g", measured),
              measured == "" ? "not measured" : measured <= $4 ? "met" : "**not met**"
          if (measured > $4 && $6 != "") reasons = reasons "- " $5 ": " $6 ".\n" }
        END { if (reasons != "") printf "\nWhy not:\n\n%s", reasons }' "$work/figures" "$folder/aims.txt"
}

# Prints a bar for each contender's small call.
draw()
{
    echo '```text'
    awk -F'|' '$1 == "small call" && $3 == "one core" {
        bar = sprintf("%*s", $4 * 4 > 60 ? 60 : int($4 * 4 + 0.5), ""); gsub(/ /, "#", bar)
        printf "%-28s %5.2f %s\n", $2, $4, bar }' "$work/figures"
    echo '```'
}

print_page()
{
    local table text
    cat <<END
# Performance

\`./dev bench\` wrote this page: $(date -u +%F), $(nproc) processors ($(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo |
        head -n 1)), $(uname -s) $kernel, $toolchain, load $load at its start.

The contenders take turns within each round, and a ratio is the median of the ratios of all rounds, so that what else the
machine does falls on all of them. A busy machine still makes those dearer that use more threads, and what crosses cores.
Logging is off, but where a row says that it is on: lines of level info and above then go to \`/dev/null\`. \`library\` is
the client that an app uses, with the service of the test kit in another process; \`./dev bench --check\` compares the
tables of instructions, allocations, system calls (but the long query's), memory and the library itself with those that
were recorded.

A small call on one core, as a multiple of a stream socket's:

$(draw)

## Aims

$(judge)
END
    while IFS='|' read -r table text; do
        printf '\n## %s\n\n%s\n\n' "${table^}" "$text"
        tabulate "$table"
    done < <(grep -v '^#' "$folder/tables.txt")
    printf '\n'
    cat "$folder/notes.md"
}

report()
{
    on_bus OFF "$programs/bench_peers" calls >>"$work/figures"
    on_bus OFF "$programs/bench_peers" events >>"$work/figures"
    measure_local >>"$work/figures"
    # Not among the recorded ones: how often the heap is trimmed depends on what else is in it.
    count_system_calls "GetPrivacyEventDetails, 1,000 records" GetPrivacyEventDetails >>"$work/figures"
    derive >"$work/derived"
    cat "$work/derived" >>"$work/figures"
    print_page >"$work/page"
    cp "$work/page" "$1"
    cat "$work/page"
}

load=$(cut -d' ' -f1 /proc/loadavg)
kernel=$(uname -r)
kernel=${kernel%%-*}
if [[ $2 == check ]] && ! grep -qxF "# $toolchain" "$recorded"; then
    echo "Nothing is compared: the figures are those of $(sed -n 's/^# \(.*g++.*\)/\1/p' "$recorded"), this is $toolchain."
    exit
fi
measure_repeatable >"$work/figures"
case $2 in
record) record ;;
check) compare ;;
report) report "$3" ;;
esac
