#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Shows the privacy indicator service, its callers and apps on the client at work, each in a process of its own:
# `examples/demo.sh [--all] BUILD_DIR`. Every step says what happens, and shows what the programs then print; a line at
# the end says whether all of it came. Without --all it is four scenes on a device; with it, everything, on either
# variant of the library.
set -euo pipefail

here=$(dirname "$(readlink -f "$0")")
what=scenes
needed=(indicator_service indicator_ctl indicator_monitor)
if [[ ${1:-} == --all ]]; then
    what=all
    needed+=(power_reporter)
    shift
fi
if (($# == 1)) && [[ $1 != -* ]]; then
    # Once more, beside a bus that ends with it.
    all=()
    [[ $what == scenes ]] || all=(--all)
    exec "$here/../platform/samgr/bin/ohos_bus" bash "$0" "${all[@]}" "$1" beside-bus
elif [[ ${2:-} != beside-bus ]]; then
    echo "usage: examples/demo.sh [--all] BUILD_DIR" >&2
    exit 2
fi

build=$(readlink -f "$1")
readonly programs=$build/examples
for program in "${needed[@]}"; do
    if [[ ! -x $programs/$program ]]; then
        echo "demo: there is no $program in $programs: build it first" >&2
        exit 1
    fi
done
readonly patience=20                 # Seconds that a line is waited for...
readonly deadline=$((SECONDS + 100)) # ...but not beyond this.
export HILOG_LEVEL=OFF               # The library's log is shown only where a step is about it.
readonly replayed_uid=3036           # Whose power events the client replays.

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
failed=0

finish()
{
    local -a left
    mapfile -t left < <(jobs -p)
    if ((${#left[@]} > 0)); then
        kill -KILL "${left[@]}" 2>/dev/null || true
        # These alone: a shell that takes the place of ohos_bus has the bus's processes as children, too.
        wait "${left[@]}" 2>/dev/null || true
    fi
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# variant NAME TEXT: from here on, programs run on this library, and nothing is left of those before.
variant()
{
    export LD_LIBRARY_PATH=$build/lib/$1
    rm -rf "$folder"
    mkdir "$folder"
    process=() begin=() expected=0 missing=0
    # What applications do, and power events.
    mkfifo "$folder/applications" "$folder/power"
    exec 3<>"$folder/applications" 4<>"$folder/power"
    printf '\n%sOn the library for %s (LD_LIBRARY_PATH=lib/%s)%s\n' "$bold" "$2" "$1" "$plain"
}

# verdict NAME: whether all lines came since it began.
verdict()
{
    if ((missing > 0)); then
        failed=1
        printf '\n%sdemo: FAIL %s: %d of %d lines are wrong%s\n' "$red" "$1" $missing $expected "$plain"
    else
        printf '\n%sdemo: PASS %s: %d of %d lines%s\n' "$green" "$1" $expected $expected "$plain"
    fi
}

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
    start "$1" applications "$programs/$2" "${@:3}"
}

# run_logged NAME PROGRAM [ARGUMENT...]: the same, with the library's log.
run_logged()
{
    HILOG_LEVEL=I run "$@"
}

# start NAME INPUT COMMAND...
start()
{
    touch "$folder/$1"
    "${@:3}" <"$folder/$2" >>"$folder/$1" 2>&1 3>&- 4>&- &
    process[$1]=$!
}

# run_reporter EVENT: as the user whose events are replayed, if a user namespace can be made for it. The bus sees the
# user outside of it, as it does for the others.
can_be_replayed=no
run_reporter()
{
    local -a as=(unshare "--map-user=$replayed_uid")
    if "${as[@]}" true 2>/dev/null; then
        can_be_replayed=yes
    else
        can_be_replayed=no as=()
        printf '   (no user namespace can be made here: not as uid %d, so its event is not replayed)\n' $replayed_uid
    fi
    printf '   $ %s\n' "${as[*]:+${as[*]} }power_reporter $1"
    HILOG_LEVEL=I start reporter power "${as[@]}" "$programs/power_reporter" "$1"
}

# app LINE: something that an application does, as it is reported to the service.
app()
{
    printf '   (%s)\n' "$1"
    echo "$1" >&3
}

# power LINE: a line for the reporter.
power()
{
    printf '   (power_reporter reads: %s)\n' "$1"
    echo "$1" >&4
}

# ctl ARGUMENTS EXIT_CODE [PATTERN...]: a request, the exit code that it should have and the lines that should come.
ctl()
{
    local -a arguments
    local code=0 pattern
    read -ra arguments <<<"$1"
    printf '   $ indicator_ctl --raw %s\n' "$1"
    "$programs/indicator_ctl" --raw "${arguments[@]}" </dev/null >"$folder/ctl" 2>&1 3>&- || code=$?
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
        # Of a line of the client's log, what it says.
        printf '   %-8s | %s\n' "$1" "${line/#*\[PrivacyIndicator\]/log: }"
    else
        ((++missing))
        printf '   %s%-8s | MISSING: %s%s\n' "$red" "$1" "$2" "$plain"
    fi
}

# expect_in_order NAME PATTERN...: each one after the one before.
expect_in_order()
{
    local pattern number
    for pattern in "${@:2}"; do
        number=0
        expect "$1" "$pattern"
        ((number == 0)) || begin[$1]=$((number + 1))
    done
}

# refuse NAME PATTERN: there is no such line, and has not been on this variant. To be asked once it would have come.
refuse()
{
    ((++expected))
    if line=$(grep -E -m 1 "$2" "$folder/$1"); then
        ((++missing))
        printf '   %s%-8s | UNEXPECTED: %s%s\n' "$red" "$1" "$line" "$plain"
    else
        printf '   %-8s | (nothing of: %s)\n' "$1" "$2"
    fi
}

# expect_camera on|off STATE APPLICATION UID: what the caller and both apps print about the camera's only use.
expect_camera()
{
    local app
    expect first "^switch: Indicator\{privacySensorType=0, state=$(($2 - 1)),"
    expect first "^sensorStateChange: .*='$3', uid=$4, privacySensorType=0, privacyAccessState=$2,"
    for app in app other; do
        expect $app "  indicator  camera $1\$"
        expect $app "  use        camera by $3 $1\$"
    done
}

# send NAME SIGNAL. If it has ended already, its lines will be missing.
send()
{
    printf '   (%s gets SIG%s)\n' "$1" "$2"
    kill "-$2" "${process[$1]}" 2>/dev/null || true
}

# stop NAME SIGNAL EXIT_CODE [PATTERN...]: ends a program; its last lines, and its exit code as one more.
stop()
{
    send "$1" "$2"
    ended "$1" "${@:3}"
}

# end_of_power EXIT_CODE: ends the reporter's input, and so the reporter.
end_of_power()
{
    printf '   (the end of power_reporter'"'"'s input)\n'
    exec 4>&-
    ended reporter "$1"
}

# ended NAME EXIT_CODE [PATTERN...]: waits for a program's end.
ended()
{
    local code=0 pattern
    {
        if await has_ended "${process[$1]}"; then
            wait "${process[$1]}" || code=$?
            echo "exit code $code" >>"$folder/$1"
        fi
    } 2>/dev/null # Where the shell reports that a program was killed.
    for pattern in "${@:3}" "^exit code $2\$"; do
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

# find_line NAME PATTERN: the first line of this step that matches is left in `line`, its number in `number`.
find_line()
{
    number=$((${begin[$1]:-1} - 1))
    while IFS= read -r line; do
        ((++number))
        [[ ! $line =~ $2 ]] || return 0
    done < <(tail -n "+${begin[$1]:-1}" "$folder/$1")
    number=0
    return 1
}

has_ended()
{
    ! kill -0 "$1" 2>/dev/null
}

# scene TITLE TEXT: a step that a reader has time to take in, and what there is to know about it.
scene()
{
    # Without a terminal there is no reader to wait for.
    ((steps == 0)) || [[ ! -t 1 ]] || sleep 4
    step "$1"
    fold -s -w 100 <<<"$2" | sed 's/^/   /'
}

scenes()
{
    variant device "a device"
    scene "On. An application starts the camera." \
        "The monitor is an app: it has registered a listener of each kind with the client, which has registered one \
of its own with the service, in another process. Which sensors are used, the service reads from its standard input."
    run service indicator_service
    expect service '^ready$'
    run app indicator_monitor
    expect app '^listening$'
    expect service "^event listener of process ${process[app]}\$"
    app "start camera com.example.chat 20010043"
    expect app '  indicator  camera on$'
    expect app '  use        camera by com.example.chat on$'
    ctl "active" 0 '^Indicator\{privacySensorType=0, state=0,'

    scene "Off. The application stops the camera." \
        "One call for the indicator, one event for the use: the service sends each to every registered listener."
    app "stop camera com.example.chat 20010043"
    expect app '  indicator  camera off$'
    expect app '  use        camera by com.example.chat off$'

    scene "The service dies while the microphone is in use." \
        "The state of the sensors is unknown now. So the client itself reports to its listeners that all are off, and \
a request fails at once."
    app "start microphone com.example.chat 20010043"
    expect app '  indicator  microphone on$'
    stop service KILL 137
    expect_in_order app '  indicator  camera off$' '  indicator  microphone off$' '  indicator  location off$' \
        '  use        camera off, microphone off, location off$'
    ctl "active" 3 'the service is not there$'

    scene "The service is back." \
        "The app does nothing. Its client is notified that the service is there and registers its listeners again, and \
the next use of a sensor arrives as before."
    run service indicator_service
    expect service "^event listener of process ${process[app]}\$"
    app "start location com.example.maps 20210044"
    expect app '  indicator  location on$'
    expect app '  use        location by com.example.maps on$'

    stop app INT 0
    stop service TERM 0
    verdict "four scenes"
}

if [[ $what == scenes ]]; then
    scenes
    exit $failed
fi

readonly log='^[^[]*\[[^]]*\]\[PrivacyIndicator\]' # The head of a line of the client's.
readonly gate="${log}WithSystemAbilityProxy: emulator is not support\$"

variant emulator "an emulator"

step "A service, a caller that registers with the service itself, and an app that does so through the client."
run service indicator_service
expect service '^ready$'
run caller indicator_ctl watch --raw
expect caller '^event listener registered$'
run_logged app indicator_monitor
expect_in_order app "$gate" "$gate" '^listening$'

step "A program finds the library's NotifyPowerEvent by name and reports a power event, and one that there is not."
run_reporter 1
expect_in_order reporter "$gate" '^power event 1: 0$'
power 7
expect_in_order reporter "${log}NotifyPowerEvent: error event: 7\$" '^power event 7: -1$'

step "The client's requests returned 0, but none has reached the service: only a caller's own did."
ctl "power 0" 0
expect service '^power event 0 from uid [0-9]+$'
refuse service '^power event 1 '
refuse service "listener of process ${process[app]}\$"
app "start camera com.example.chat 20010043"
expect caller "^sensorStateChange: .*='com.example.chat', uid=20010043, privacySensorType=0, privacyAccessState=1,"
refuse app '(indicator|use)  '

step "The service is killed: the app's listeners get three switches, and one event with three records."
stop service KILL 137
expect_in_order app '  indicator  camera off$' '  indicator  microphone off$' '  indicator  location off$' \
    '  use        camera off, microphone off, location off$'
expect reporter "${log}OnRemoveSystemAbility: OnRemoveSystemAbility: saId=66090\$"

step "The service is back: the power event is replayed, then both kinds of listeners are registered again."
run service indicator_service
expect service '^ready$'
if [[ $can_be_replayed == yes ]]; then
    expect_in_order reporter "${log}NotifyPowerEventByCache: uid: $replayed_uid\$" \
        "${log}NotifyPowerEventByCache: To notify current event: 1\$" "$gate" \
        "${log}ReRegisterPrivacyIndicatorSwitchListener: begin.\$" "${log}ReRegisterPrivacyEventListener: begin.\$"
else
    expect_in_order reporter "${log}NotifyPowerEventByCache: uid: [0-9]+\$" \
        "${log}ReRegisterPrivacyIndicatorSwitchListener: begin.\$" "${log}ReRegisterPrivacyEventListener: begin.\$"
fi
expect_in_order app "${log}NotifyPowerEventByCache: uid: 0\$" \
    "${log}ReRegisterPrivacyIndicatorSwitchListener: begin.\$" "$gate" \
    "${log}ReRegisterPrivacyEventListener: begin.\$" "$gate"

step "All end when asked to, the reporter with its input: one event was refused."
end_of_power 1
stop app INT 0
stop caller TERM 0
stop service TERM 0

verdict emulator

variant device "a device"
camera=$folder/video0
touch "$camera"

step "A service starts. Its standard input, and which processes have a file open, say what applications do."
run service indicator_service --watch "camera=$camera"
expect service '^ready$'

step "Two callers register a listener of each kind (requests 8 and 1)."
for watcher in first second; do
    run $watcher indicator_ctl watch --raw
    expect $watcher '^switch listener registered$'
    expect $watcher '^event listener registered$'
done

step "An application starts the camera: every listener gets the indicator and the event."
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

step "The uses: all of them (request 3), one sensor's (request 4), and one user's."
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

step "A listener that does not answer delays no other one, and gets what it has missed when it answers again."
send second STOP
app "start microphone com.example.chat 20010043"
expect first '^switch: Indicator\{privacySensorType=1, state=0,'
expect first '^sensorStateChange: .*, privacySensorType=1, privacyAccessState=1,'
send second CONT
expect second '^switch: Indicator\{privacySensorType=1, state=0,'
expect second '^sensorStateChange: .*, privacySensorType=1, privacyAccessState=1,'

step "A caller ends and unregisters its listeners (requests 9 and 2)."
stop second INT 0 '^switch listener unregistered$' '^event listener unregistered$'

step "Two apps on the client: here, their requests reach the service."
for app in app other; do
    run_logged $app indicator_monitor
    expect $app '^listening$'
    expect service "^switch listener of process ${process[$app]}\$"
    expect service "^event listener of process ${process[$app]}\$"
done

step "So does a power event through the library's NotifyPowerEvent."
run_reporter 1
expect reporter '^power event 1: 0$'
expect service '^power event 1 from uid [0-9]+$'

step "A process opens the file that stands for the camera: every listener of every process is called."
printf '   $ tail -f %s\n' "$camera"
start user applications tail -f "$camera"
expect_camera on 1 tail "$(id -u)"
ctl "active" 0 '^Indicator\{privacySensorType=0, state=0,'

step "The process is killed, which closes the file: the indicator is off."
stop user KILL 137
expect_camera off 2 tail "$(id -u)"

step "The service is killed: every listener is called, and requests fail at once."
stop service KILL 137
expect first '^the service is gone$'
for app in app other; do
    expect_in_order $app '  indicator  camera off$' '  indicator  microphone off$' '  indicator  location off$' \
        '  use        camera off, microphone off, location off$'
done
expect reporter "${log}OnRemoveSystemAbility: "
ctl "active" 3 'the service is not there$'

step "The service is back, with nothing remembered: the client replays the power event and registers its listeners."
run service indicator_service --watch "camera=$camera"
expect service '^ready$'
if [[ $can_be_replayed == yes ]]; then
    expect reporter "${log}NotifyPowerEventByCache: To notify current event: 1\$"
    expect service '^power event 1 from uid [0-9]+$'
fi
for app in app other; do
    expect service "^switch listener of process ${process[$app]}\$"
    expect service "^event listener of process ${process[$app]}\$"
done
expect first '^the service is back$'
expect first '^switch listener registered$'
expect first '^event listener registered$'

step "Without having done anything, the apps get events again."
app "start camera com.example.chat 20010043"
expect_camera on 1 com.example.chat 20010043
ctl "active" 0 '^Indicator\{privacySensorType=0, state=0,'

step "All end when asked to, the reporter with its input."
end_of_power 0
stop app INT 0
stop other TERM 0
stop first TERM 0
stop service TERM 0

verdict device
exit $failed
