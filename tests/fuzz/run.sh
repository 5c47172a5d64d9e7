#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# usage: run.sh BUILD SECONDS
# Runs the fuzz targets of a build one after the other, SECONDS in all, each on a fresh copy of its corpus, and tells
# what they did and which lines of the sources that they are for they reached. Fails at a finding, and below LEAST.
set -euo pipefail
shopt -s nullglob
root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../..")
folder=$root/tests/fuzz
build=$(realpath "$1")
readonly LEAST=95 # Per cent of the lines.
export HILOG_LEVEL=OFF
failed=0
table=$(printf '%-22s %12s %10s %8s  %s' target executions per-second lines findings)
remarks=""

# Prints a figure of the fuzzer's own, 0 where it did not get so far as to tell.
figure()
{
    sed -n "s/^stat::$1: *//p" "$2" | grep . || echo 0
}

# Runs a target, whose findings go to $2/findings.
fuzz()
{
    local name=$1 work=$2 seconds=$3
    rm -rf "$work"
    mkdir -p "$work/corpus" "$work/findings"
    cp "$folder/corpus/$name"/* "$folder/regressions/$name"/* "$work/corpus"
    LLVM_PROFILE_FILE="$work/%m.profraw" "$build/tests/fuzz/${name}_fuzz" -max_total_time="$seconds" -max_len=16384 \
        -timeout=10 -print_final_stats=1 -artifact_prefix="$work/findings/" -dict="$folder/$name.dict" \
        "$work/corpus" >"$work/log" 2>&1
}

# Prints "file:line:count" for each line of the sources that a target is for.
count_lines()
{
    local name=$1 work=$2 object sources=() objects=()
    read -ra sources < <(sed -n 's|^// Covers: ||p' "$folder/${name}_fuzz.cpp")
    for object in "$build"/lib/emulator/*.so "$build"/platform/*/*.so; do
        objects+=(-object "$object")
    done
    llvm-profdata merge -o "$work/profile" "$work"/*.profraw
    # It warns of inline functions that one of the objects does not use.
    # The sources are patterns. shellcheck disable=SC2086
    (cd "$root" && llvm-cov export -format=lcov -instr-profile="$work/profile" "$build/tests/fuzz/${name}_fuzz" \
        "${objects[@]}" $(printf "$root/%s " "${sources[@]}") 2>>"$work/log") |
        sed -n -e "s|^SF:$root/||" -e 't file' -e 's/^DA:\([0-9]*\),\([0-9]*\).*/\1:\2/' -e 't line' -e 'd' \
            -e ':file' -e 'h;d' -e ':line' -e 'G;s/\(.*\)\n\(.*\)/\2:\1/p'
}

# Prints the lines that were not reached, with the reason that unreachable.txt has for it.
explain()
{
    local file line text pattern reason
    while IFS=: read -r file line _; do
        text=$(sed -n "${line}s/^ *//p" "$root/$file")
        reason="no reason known"
        while IFS='|' read -r pattern why; do
            [[ "$file:$text" != "$pattern"* ]] || reason=$why
        done < <(grep -v '^#' "$folder/unreachable.txt")
        printf '  not reached: %s:%s: %s  [%s]\n' "$file" "$line" "$text" "$reason"
    done
}

names=()
for target in "$folder"/*_fuzz.cpp; do
    names+=("$(basename "$target" _fuzz.cpp)")
done
seconds=$((($2 + ${#names[@]} - 1) / ${#names[@]}))

for name in "${names[@]}"; do
    echo "$name: $seconds s"
    work=$build/fuzzing/$name
    fuzz "$name" "$work" "$seconds" || true
    findings=("$work"/findings/*)
    executions=$(figure number_of_executed_units "$work/log")
    rate=$(figure average_exec_per_sec "$work/log")
    percent=0
    lines=-
    profiles=("$work"/*.profraw)
    if ((${#profiles[@]} > 0)); then
        count_lines "$name" "$work" >"$work/lines" || true
        all=$(wc -l <"$work/lines")
        missed=$(grep -c ':0$' "$work/lines" || true)
        percent=$((all > 0 ? (all - missed) * 1000 / all : 0))
        lines=$((percent / 10)).$((percent % 10))%
        remarks+=$(sed -n '/:0$/p' "$work/lines" | explain)
        [[ "$remarks" != *[!$'\n'] ]] || remarks+=$'\n'
    fi
    printf -v table '%s\n%-22s %12s %10s %8s  %s' "$table" "$name" "$executions" "$rate" "$lines" "${#findings[@]}"
    if ((${#findings[@]} > 0)); then
        failed=1
        remarks+="  finding of $name, told in $work/log; copy it into tests/fuzz/regressions/$name/ and mend its cause:"
        remarks+=$(printf '\n    %s' "${findings[@]}")$'\n'
    elif ((executions == 0 || percent < LEAST * 10)); then
        failed=1
        remarks+="  $name: less than $LEAST % of the lines, or no end; see $work/log"$'\n'
    fi
done
printf '\n%s\n%s' "$table" "$remarks"
exit $failed
