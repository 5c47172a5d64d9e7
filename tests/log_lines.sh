#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# usage: log_lines.sh SOURCE_DIR
# docs/log_lines.md explains every line that the library can log, and no line that it cannot.
set -eu
cd "$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM # By default, sh ends without its exit trap.

# The messages are the string literals of these calls, but for the names of functions, which have no blank, dot or "!".
# A placeholder is an ellipsis on the page.
cat client/*.cpp client/*.h composer/*.cpp ipc/*.cpp ipc/*.h model/*.cpp | sed 's|//.*||; /^#/d' | tr '\n' ' ' | tr ';' '\n' |
    grep -E 'Log(Debug|Info|Warn|Error)\(|Fail\(|call\.|request\.Read|request\.Reply|NewRecord<' |
    grep -oE '"[^"]*"' | tr -d '"' | sed -E 's/%\{public\}[sd]/…/g' | grep -E '[ .!]' | sort -u >"$work/logged"
[ "$(wc -l <"$work/logged")" -ge 80 ] || {
    echo "the messages were not found in the sources:" && cat "$work/logged"
    exit 1
} >&2
grep -oE '`[^`]*`' docs/log_lines.md | tr -d '`' | sort -u >"$work/explained"

if comm -23 "$work/logged" "$work/explained" | grep .; then
    echo "docs/log_lines.md does not explain the lines above" >&2
    exit 1
fi
grep -E '^[^[]*[ !.]' "$work/explained" | grep -vE "^(HILOG_LEVEL|\[|'…')" >"$work/texts"
if comm -13 "$work/logged" "$work/texts" | grep .; then
    echo "docs/log_lines.md explains the lines above, which are never logged" >&2
    exit 1
fi
