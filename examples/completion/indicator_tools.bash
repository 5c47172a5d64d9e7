# SPDX-License-Identifier: Apache-2.0
# Bash completion for the programs here: `. examples/completion/indicator_tools.bash`. What there is to complete is read
# from each program's own --help.

_indicator_tool()
{
    local program=$1 word=$2 help words
    # Of a command, once there is one: its own options.
    if ! help=$("$program" "${COMP_WORDS[@]:1:COMP_CWORD > 1}" --help 2>/dev/null); then
        help=$("$program" --help 2>/dev/null)
    fi
    words=$(sed -n -E 's/^  (-h, )?(--[a-z]+=?).*/\2/p' <<<"$help")
    if ((COMP_CWORD == 1)); then
        words+=" $(sed -n -E '/^Commands:/,/^$/ s/^  ([a-z]+).*/\1/p' <<<"$help")"
    elif [[ $help == *SENSOR* ]]; then
        words+=" camera microphone location"
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    # A value follows the equals sign.
    [[ ${COMPREPLY[*]} != *= ]] || compopt -o nospace
}

complete -F _indicator_tool indicator_ctl indicator_monitor indicator_service power_reporter
