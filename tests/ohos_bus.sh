#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# usage: ohos_bus.sh SOURCE_DIR
# What ohos_bus promises to those who run it: where the bus listens, how the command ends, and that nothing is left.
set -euo pipefail
bus=$(realpath "$1")/platform/samgr/bin/ohos_bus
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir tmp
export TMPDIR=$work/tmp
show=(printenv OHOS_BUS_ADDRESS)

fail()
{
    printf '%s\n' "$@" >&2
    exit 1
}

# expect CODE PATTERN COMMAND...: it ends with that code, and what it prints on either stream matches the pattern.
expect()
{
    local code=$1 pattern=$2 printed status=0
    shift 2
    printed=$("$@" 2>&1 </dev/null) || status=$?
    # shellcheck disable=SC2053
    [[ $status == "$code" && $printed == $pattern ]] ||
        fail "$*" "ends with $status, not $code, and prints" "$printed" "which should be" "$pattern"
}

# await COMMAND...: runs it again and again until it succeeds.
await()
{
    local deadline=$((SECONDS + 20))
    until "$@"; do
        ((SECONDS < deadline)) || fail "not in time: $*"
        sleep 0.02
    done
}

# Nothing is left of a bus at that path: no socket, no file and no daemon.
is_over()
{
    [[ ! -e $1 && -z $(ls "$TMPDIR") ]] && ! grep -qsa "$TMPDIR/[o]hos_bus" /proc/[0-9]*/cmdline
}

expect 0 "unix:path=$TMPDIR/ohos_bus.*/bus" "$bus" "${show[@]}"
ln -s "$bus" link
expect 0 "unix:path=$work/own" ./link --address own "${show[@]}"
mkdir copy
cp "$bus" "$(dirname "$bus")/../etc/ohos_bus.conf.in" copy
expect 0 "unix:path=$work/own" copy/ohos_bus --address own "${show[@]}"
# shellcheck disable=SC2016
expect 0 '' env TMPDIR=tmp "$bus" sh -c 'test -S "${OHOS_BUS_ADDRESS#unix:path=}"'
expect 7 x "$bus" sh -c 'echo x; exit 7'
expect 127 'ohos_bus: there is no command nothing' "$bus" nothing

usage='Usage: ohos_bus [[]--address PATH] COMMAND [[]ARGUMENT...]*'
expect 0 "$usage" "$bus" --help
expect 0 "$usage" "$bus" -h
expect 0 'ohos_bus [0-9]*.[0-9]*.[0-9]' "$bus" --version
expect 2 "$usage" "$bus"
expect 2 "$usage" "$bus" --address
expect 2 "$usage" "$bus" --adress x true
expect 1 'ohos_bus: the path of a socket has 107 bytes at most: not /*' "$bus" --address "$(printf '%107s' x)" true
expect 1 "ohos_bus: $work/link is something else than a socket" "$bus" --address link true
if unshare --map-user=54321 true 2>/dev/null; then # Where there are user namespaces.
    expect 1 'ohos_bus: user 54321 has no entry in passwd, which the daemon asks for' \
        unshare --map-user=54321 "$bus" true
fi

# What asks the daemon of DBUS_SESSION_BUS_ADDRESS something.
ask=(dbus-send --type=method_call --print-reply=literal --dest=org.freedesktop.DBus /org/freedesktop/DBus
    org.freedesktop.DBus.GetId)
odd="a b,c;d:e|f&g<h>%\\é'i"
mkdir "$odd"
# shellcheck disable=SC2016
TMPDIR=$work/$odd expect 0 '*' "$bus" sh -c 'DBUS_SESSION_BUS_ADDRESS=$OHOS_BUS_ADDRESS "$@"' - "${ask[@]}"
expect 0 'unix:path=*/a%20b%2cc%3bd%3ae%7cf%26g%3ch%3e%25%5c%c3%a9%27i/own' "$bus" --address "$odd/own" "${show[@]}"

# The next bus takes the place of one that has died, which leaves it that when its own command ends.
# shellcheck disable=SC2016
expect 0 '*' "$bus" --address own bash -c '
    for child in $(<"/proc/$$/task/$$/children"); do
        [[ $(<"/proc/$child/comm") != dbus-daemon ]] || kill -KILL "$child"
    done
    exec "$@"' - "$bus" --address own env DBUS_SESSION_BUS_ADDRESS="unix:path=$work/own" "${ask[@]}"
await is_over own
expect 0 '' "$bus" --address own ln -sfn next own
await is_over gone
expect 0 next readlink own
rm own

# The command is the process that was started. The bus ends with it, also where a terminal ends all of them.
mkfifo ready
set -m
# shellcheck disable=SC2016
"$bus" --address own bash -c 'echo "$$" >ready; exec sleep 60' &
set +m
read -r pid <ready
[[ $pid == "$!" ]] || fail "the command is process $pid, not $!"
kill -- "-$pid"
status=0
wait "$pid" || status=$?
[[ $status == 143 ]] || fail "SIGTERM ends it with $status"
await is_over own
