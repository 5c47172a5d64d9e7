#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# usage: pages.sh CMAKE CXX SOURCE_DIR BUILD_DIR
# Runs the commands of README.md and docs/*.md in their order, and compares what comes with what the pages show. A block
# "console NAME" is what a page's terminal NAME shows, and what is typed there; a block "text NAME" is the board on it.
# A page's programs are in a folder of its name in the user's home.
set -euo pipefail
cmake=$1 source=$3 build=$4

readonly patience=60                    # Seconds that something is waited for.
declare -A terminal keys screen running # By a terminal's name: its process, its two ends, the program in front of it.
work=$(mktemp -d)
trap 'kill "${terminal[@]}" 2>/dev/null || true; rm -rf "$work"' EXIT
fail()
{
    printf '%s: ' "$page" >&2
    printf '%s\n' "$@" >&2
    exit 1
}

# masked: without what differs each time, such as times and what a shell says of its jobs, and what terminals alone see.
masked()
{
    sed -E 's/\x1b\[([?0-9;]*[A-Za-z]|$)//g; s/\r//g; s/ +$//; s/[0-9]{4}-[0-9]{2}-[0-9]{2}/DATE/g
        s/[0-9]{2}:[0-9]{2}:[0-9]{2}(\.[0-9]{3})?/TIME/g; s/, for [0-9].*/, for A WHILE/
        s/process [0-9]+/process PID/; /^\[1\]/d'
}

# next NAME DELIMITER: what the terminal shows up to there is left in `shown`.
next()
{
    if ((SECONDS >= deadline)) || ! IFS= read -r -d "$2" -t $((deadline - SECONDS)) -u "${screen[$1]}" shown; then
        fail "\"${running[$1]}\" in terminal $1 does not show what it should, but:" "$shown"
    fi
}

# prompt NAME: waits for it. What was shown until then is left in `output`.
prompt()
{
    next "$1" $'\a'
    output=$(masked <<<"$shown")
    next "$1" ' '
    [[ $shown == '0$' ]] || fail "\"${running[$1]}\" in terminal $1 ends with exit code ${shown%$}" "$output"
    running[$1]=
}

# end NAME [KEY]: ends the program in front of the terminal, if there is one.
end()
{
    deadline=$((SECONDS + patience))
    local program=${running[$1]}
    [[ -z $program ]] || { printf '%s' "${2:-$'\003'}" >&"${keys[$1]}" && prompt "$1"; }
    [[ $program != *app || $output == ^C ]] || fail "\"$program\" in terminal $1 shows more than it should:" "$output"
}

# settle NAME TEXT: waits until the program has shown it. One that stays may show it in any order, as the two kinds of
# events come on two threads; all but the app may show other lines, too.
settle()
{
    local line lines=$'\n' expected
    expected=$(masked <<<"$2")
    case ${running[$1]} in
    *indicator_monitor) until next "$1" J && [[ $shown == *there* && $shown != *unknown* ]]; do :; done ;;
    *app)
        while read -r line; do
            next "$1" $'\n'
            [[ $(masked <<<"$shown") != "${running[$1]}" ]] || next "$1" $'\n' # The command's echo.
            lines+=$(masked <<<"$shown")$'\n'
        done <<<"$expected"
        diff <(sort <<<$'\n'"$expected"$'\n') <(sort <<<"$lines") >&2 || fail "this is what differs in terminal $1"
        ;;
    *service | *--lines)
        while read -r line; do
            until [[ $lines == *$'\n'"$line"$'\n'* ]]; do
                next "$1" $'\n'
                lines+=$(masked <<<"$shown")$'\n'
            done
        done <<<"$expected"
        ;;
    ?*)
        prompt "$1"
        diff <(echo "$expected") - <<<"$(sed 1d <<<"$output")" >&2 || fail "this is what differs in terminal $1"
        ;;
    esac
}

# play NAME TEXT: what is on a terminal.
play()
{
    local line text='' isRun=
    if [[ ! -v terminal[$1] ]]; then
        mkfifo "$work/$1"
        exec {fd}<>"$work/$1"
        keys[$1]=$fd
        exec {fd}< <(exec script -q -f -E always -c bash /dev/null <"$work/$1")
        screen[$1]=$fd terminal[$1]=$! running[$1]=bash
        prompt "$1"
    fi
    while IFS= read -r line; do
        case $line in
        '$ '* | '^C' | '^D' | 'start '* | 'stop '* | switch)
            [[ -z $isRun$text ]] || settle "$1" "$text"
            isRun='' text=''
            ;;&
        '$ '*)
            end "$1"
            running[$1]=${line#'$ '} isRun=yes
            echo "${running[$1]}" >&"${keys[$1]}"
            ;;
        '^C') end "$1" ;;
        '^D') end "$1" $'\004' ;;
        'start '* | 'stop '* | switch) echo "$line" >&"${keys[$1]}" ;;
        *) text+=${text:+$'\n'}$line ;;
        esac
    done <<<"$2"
    [[ -z $isRun$text ]] || settle "$1" "$text"
}

# check COMMAND: one that is in no terminal's block. Those that take long need only be there: other tests, and what each
# change must pass, run them or the like, but for fuzz and soak.
check()
{
    case $1 in
    ./dev) ./dev ;;
    './dev '*) ./dev | grep "^  $(cut -d ' ' -f 2 <<<"$1") " ;;
    *' --preset release') "$cmake" --list-presets=all | grep '"release"' ;;
    'ctest --test-dir build/release '*) eval "$1 -N" | grep 'Total Tests: [1-9]' ;;
    'cmake -G Ninja -B build '*) (cd ~/guide && eval "$1") ;;
    'cmake -G Ninja -B build/device '*) grep -F -e -DQNL_PLATFORM_LIBRARY_DIRS= tests/external_platform.sh ;;
    'indicator_ctl '*) grep -F "\$ $1" "$page" ;; # In a terminal.
    'cmake --install '* | '. examples/'*) eval "$1" ;;
    'ohos_bus COMMAND') platform/samgr/bin/ohos_bus true ;;
    'man '*) [[ ! -e ${1#man } ]] || grep '^\.TH' "${1#man }" ;;
    *) echo "nothing runs it" && false ;;
    esac >"$work/output" 2>&1 || fail "$1:" "$(<"$work/output")"
}

check_all()
{
    local line
    while read -r line; do
        check "$line" </dev/null
    done <"$work/page/commands"
}

# The project's folder, as it is after ./dev build, and a shell whose prompt is easy to find.
mkdir -p "$work/project/build" "$work/home"
find "$source" -mindepth 1 -maxdepth 1 ! -name build -exec ln -s -t "$work/project" {} +
ln -s "$build" "$work/project/build/release"
# Without an editor of the shell's own, what is typed is shown by the terminal, as it is.
printf '%s\n' "PS1='\a\$?$ '; set +o emacs; stty columns 76 rows 18" >"$work/home/.bashrc"
unset LD_LIBRARY_PATH OHOS_BUS_ADDRESS CMAKE_PREFIX_PATH HILOG_LEVEL NO_COLOR
shopt -s nullglob
export HOME=$work/home SHELL=$BASH TERM=xterm CXX=$2
cd "$work/project"

for page in README.md docs/*.md; do
    programs=~/$(basename "$page" .md)
    rm -rf "$work/page" && mkdir -p "$work/page" "$programs"
    sed "s|/tmp/qnl-bus|$work/bus|g" "$page" | awk -v folder="$work/page" -v programs="$programs" '
        /^```/ { program = $1 == "```cmake" ? "CMakeLists.txt" : $1 == "```cpp" ? $2 : "" }
        program && !/^```/ { print > (programs "/" program) }
        /^```/ { isBlock = !isBlock; file = folder "/" 1000 + NR; sub(/^```/, "") }
        { print > (isBlock ? file : folder "/prose") }'
    ! grep -E '^    [^ ]' "$work/page/prose" >&2 || fail "the block above is not fenced"
    for block in "$work/page"/[0-9]*; do
        read -r kind name <"$block" || true
        text=$(tail -n +2 "$block")
        deadline=$((SECONDS + patience))
        case "$kind $name" in
        'console '?*) play "$name" "$text" ;;
        'text '?*)
            text=$(masked <<<"$text" | sort)
            until next "$name" J && [[ $(masked <<<"${shown##*$'\e[H'}" | sort) == "$text" ]]; do :; done
            ;;
        'sh ')
            sed -E ':join; /\\$/ { N; s/\\\n *//; t join }; s/ *#.*//' <<<"$text" >"$work/page/commands"
            check_all
            ;;
        'cpp ') [[ $page == README.md ]] || fail "no test builds its program without a name" ;; # tests/consumer does.
        *) ! grep -E '^(\$|\./)' <<<"$text" >&2 || fail "the line above is in a block \"$kind $name\"" ;;
        esac
    done
    for name in "${!terminal[@]}"; do
        end "$name"
        echo exit >&"${keys[$name]}"
        wait "${terminal[$name]}"
        rm "$work/$name"
    done
    terminal=()
    awk -v RS='`' 'NR % 2 == 0' "$work/page/prose" | grep -E >"$work/page/commands" \
        '^(\./|ctest|cmake |git |man |\. |indicator_[a-z]+ |ohos_bus |platform/samgr/bin|build/release|[A-Z_]{4,}=[^ ]* )' || true
    check_all
done
