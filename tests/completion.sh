#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# usage: completion.sh SOURCE_DIR BUILD_DIR
# What bash offers after a program's words is what the program's --help names.
set -euo pipefail
# shellcheck source=/dev/null
. "$1/examples/completion/indicator_tools.bash"
PATH=$2/examples:$PATH
compopt() { :; } # It works within a completion alone.

# expect OFFER WORD...: the last word, which may be empty, is being typed.
expect()
{
    local offer=$1
    COMP_WORDS=("${@:2}") COMP_CWORD=$(($# - 2)) COMPREPLY=()
    _indicator_tool "$2" "${!#}"
    [[ ${COMPREPLY[*]} == "$offer" ]] || { echo "after '${*:2}' comes '${COMPREPLY[*]}', not '$offer'" >&2 && exit 1; }
}

expect events indicator_ctl e
expect --user= indicator_ctl events --u
expect microphone indicator_ctl off m
expect --json indicator_monitor --j
expect '' indicator_ctl active --user
