#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The privacy indicator service and its callers at work, each in a process of its own: `examples/demo.sh BUILD_DIR`.
# Every step says what happens, and shows what the programs then print. The last line says whether all of it came.
set -euo pipefail

here=$(dirname "$(readlink -f "$0")")
if (($# == 1)); then
    # Once more, beside a bus that ends with it.
    exec "$here/../platform/samgr/bin/ohos_bus" bash "$0" "$1" beside-bus
elif [[ ${2:-} != beside-bus ]]; then
    echo "usage: examples/demo.sh BUILD_DIR" >&2
    exit 2
fi

readonly programs=$1/examples
if [[ ! -x $programs/indicator_service || ! -x $programs/indicator_ctl ]]; then
    echo "demo: there is no indicator_service and indicator_ctl in $programs: build them first" >&2
    exit 1
fi
readonly patience=5                 # Seconds that a line is waited for...
readonly deadline=$((SECONDS + 45)) # ...but not beyond this.
export HILOG_LEVEL=OFF              # The library's log would stand between the lines.

bold='' green='' red='' plain=''
if [[ -t 1 ]]; then
    bold=$'\e[1m' green=$'\e[32m' red=$'\e[31m' plain=$'\e[0m'
fi

# What a program prints is captured in here, in a file of its name.
folder=$(mktemp -d /tmp/indicator_demo.XXXXXX)
declare -A process # By its name.
declare -A begin   # Of each file, the first line that belongs to the current step.
steps=0
expected=0
missing=0

finish()
{
    local -a left
    mapfile -t left < <(jobs -p)
    ((${#left[@]} == 0)) || kill -KILL "${left[@]}" 2>/dev/null || true
    wait 2>/dev/null || true
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# step TEXT: from here on, only new lines count.
step()
{
    local name
    printf '\n%s%d. %s%s\n' "$bold" $((++steps)) "$1" "$plain"
    for name in "${!process[@]}"; do
        begin[$name]=$(($(wc -l <"$folder/$name") + 1))
    done
}

# run NAME PROGRAM [ARGUMENT...]: starts a program that stays.
run()
{
    printf '   $ %s\n' "${*:2}"
    touch "$folder/$1"
    "$programs/$2" "${@:3}" <"$folder/applications" >>"$folder/$1" 2>&1 3>&- &
    process[$1]=$!
}

# app LINE: something that an application does, as the service is told.
app()
{
    printf '   (%s)\n' "$1"
    echo "$1" >&3
}

# ctl ARGUMENTS EXIT_CODE [PATTERN...]: a request, the exit code that it should have and the lines that should come.
ctl()
{
    local -a arguments
    local code=0 pattern
    read -ra arguments <<<"$1"
    printf '   $ indicator_ctl %s\n' "$1"
    "$programs/indicator_ctl" "${arguments[@]}" </dev/null >"$folder/ctl" 2>&1 3>&- || code=$?
    echo "exit code $code" >>"$folder/ctl"
    for pattern in "${@:3}" "^exit code $2\$"; do
        expect ctl "$pattern"
    done
}

# expect NAME PATTERN: waits for a line of a program, shows it, and counts it.
expect()
{
    local line
    ((++expected))
    if await find_line "$1" "$2"; then
        printf '   %-7s | %s\n' "$1" "$line"
    else
        ((++missing))
        printf '   %s%-7s | MISSING: %s%s\n' "$red" "$1" "$2" "$plain"
    fi
}

# send NAME SIGNAL. A program that is gone already will be missed elsewhere.
send()
{
    printf '   (%s gets SIG%s)\n' "$1" "$2"
    kill "-$2" "${process[$1]}" 2>/dev/null || true
}

# stop NAME SIGNAL EXIT_CODE [PATTERN...]: ends a program; its last lines, and its exit code as one more.
stop()
{
    local code=0 pattern
    {
        send "$1" "$2"
        if await has_ended "${process[$1]}"; then
            wait "${process[$1]}" || code=$?
            echo "exit code $code" >>"$folder/$1"
        fi
    } 2>/dev/null # Where the shell would say that a program was killed.
    for pattern in "${@:4}" "^exit code $3\$"; do
        expect "$1" "$pattern"
    done
}

await()
{
    local end=$((SECONDS + patience))
    until "$@"; do
        ((SECONDS < end && SECONDS < deadline)) || return 1
        sleep 0.05
    done
}

# find_line NAME PATTERN: the first line of this step that matches is left in `line`.
find_line()
{
    while IFS= read -r line; do
        [[ ! $line =~ $2 ]] || return 0
    done < <(tail -n "+${begin[$1]:-1}" "$folder/$1")
    return 1
}

has_ended()
{
    ! kill -0 "$1" 2>/dev/null
}

mkfifo "$folder/applications"
exec 3<>"$folder/applications"

step "A service starts. What applications do it reads from its standard input."
run service indicator_service
expect service '^ready$'

step "Two callers register a listener of each kind (requests 8 and 1)."
for watcher in first second; do
    run $watcher indicator_ctl watch
    expect $watcher '^switch listener registered$'
    expect $watcher '^event listener registered$'
done

step "An application starts the camera: every listener hears of the indicator and of the event."
app "start camera com.example.chat 20010043"
for watcher in first second; do
    expect $watcher '^switch: Indicator\{privacySensorType=0, state=0,'
    expect $watcher "^sensorStateChange: .*='com.example.chat', uid=20010043, privacySensorType=0, privacyAccessState=1,"
done

step "Another one joins and the first one stops: the indicator is still on (request 5)."
app "start camera com.example.maps 20210044"
app "stop camera com.example.chat 20010043"
expect first "^sensorStateChange: .*='com.example.maps', uid=20210044, privacySensorType=0, privacyAccessState=1,"
expect first "^sensorStateChange: .*='com.example.chat', uid=20010043, privacySensorType=0, privacyAccessState=2,"
ctl "active" 0 '^Indicator\{privacySensorType=0, state=0,'

step "The last one stops: the indicator goes off."
app "stop camera com.example.maps 20210044"
expect first '^switch: Indicator\{privacySensorType=0, state=1,'
expect second '^switch: Indicator\{privacySensorType=0, state=1,'

step "A caller shows the microphone's indicator and takes it off again (requests 6 and 7)."
ctl "on microphone 1.5 2 30 40 5" 0
expect first '^switch: .*=1, state=0, positionX=1.500000, positionY=2.000000, width=30.000000, height=40.000000,.*=5}$'
ctl "active" 0 '^Indicator\{privacySensorType=1, state=0, positionX=1.500000,'
ctl "off microphone" 0
expect first '^switch: Indicator\{privacySensorType=1, state=1,'

step "Who used what: all of it (request 3), one sensor's (request 4), and one user's."
app "start location com.example.maps 20210044"
expect first '^sensorStateChange: .*, privacySensorType=2, privacyAccessState=1,'
ended='startTimestamp=[1-9][0-9]*, realEndTimestamp=[1-9][0-9]*, showEndTimestamp=[1-9][0-9]*'
running='startTimestamp=[1-9][0-9]*, realEndTimestamp=0, showEndTimestamp=0'
ctl "events" 0 "='com.example.chat', uid=20010043, privacySensorType=0, $ended" \
    "='com.example.maps', uid=20210044, privacySensorType=0, $ended" \
    "='com.example.maps', uid=20210044, privacySensorType=2, $running"
ctl "events location" 0 "^PrivacyEventDetail='com.example.maps', uid=20210044, privacySensorType=2, $running"
ctl "events --user 100" 0 "^PrivacyEventDetail='com.example.chat', uid=20010043, privacySensorType=0, $ended"

step "How long (request 10): of one application, and of one sensor."
ctl "usage --app com.example.chat" 0 \
    "bundleName_='com.example.chat', uid=20010043, usageDuration_=[1-9][0-9]*, permissionGroup_='camera'"
ctl "usage --group location" 0 \
    "bundleName_='com.example.maps', uid=20210044, usageDuration_=[1-9][0-9]*, permissionGroup_='location'"

step "A power event (request 11), and one that there is not."
ctl "power 1" 0
expect service '^power event 1 from uid [0-9]+$'
ctl "power 7" 1 'the service refused: 22$'

step "A line that the service cannot read is named and skipped."
app "start toaster com.example.chat 20010043"
expect service ': line [0-9]+: "toaster" is not a sensor'

step "A listener that does not answer delays nobody else, and hears what it missed when it is back."
send second STOP
app "start microphone com.example.chat 20010043"
expect first '^switch: Indicator\{privacySensorType=1, state=0,'
expect first '^sensorStateChange: .*, privacySensorType=1, privacyAccessState=1,'
send second CONT
expect second '^switch: Indicator\{privacySensorType=1, state=0,'
expect second '^sensorStateChange: .*, privacySensorType=1, privacyAccessState=1,'

step "A caller has heard enough and unregisters its listeners (requests 9 and 2)."
stop second INT 0 '^switch listener unregistered$' '^event listener unregistered$'

step "The service is killed: the remaining listener is told, and requests fail at once."
stop service KILL 137
expect first '^the service is gone$'
ctl "active" 3 'the service is not there$'

step "The service is back, with nothing remembered: the listener registers by itself and hears again."
run service indicator_service
expect service '^ready$'
expect first '^the service is back$'
expect first '^switch listener registered$'
expect first '^event listener registered$'
app "start camera com.example.chat 20010043"
expect first '^switch: Indicator\{privacySensorType=0, state=0,'
expect first '^sensorStateChange: .*, privacySensorType=0, privacyAccessState=1,'
ctl "active" 0 '^Indicator\{privacySensorType=0, state=0,'

step "Both end when asked to."
stop first TERM 0
stop service TERM 0

if ((missing > 0)); then
    printf '\n%sdemo: FAIL %d of %d lines are missing%s\n' "$red" $missing $expected "$plain"
    exit 1
fi
printf '\n%sdemo: PASS %d of %d lines%s\n' "$green" $expected $expected "$plain"
