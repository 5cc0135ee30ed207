#!/usr/bin/env bash
# The bash completion of voractl: commands, options and their values, and
# item and group paths read through the built voractl from the simulator.
#   check-completion.sh COMPLETION_FILE VORACTL
set -uo pipefail
source "$1"
voractl=$2
dir=$(mktemp -d /tmp/vtest-completion-XXXXXX)
trap 'rm -rf "$dir"' EXIT
export VORA_SIM_STATE=$dir/board.json VORA_SIM_TIME=0
failures=0

# expect "REPLY|REPLY|..." WORD... CURRENT: the words as bash hands them over
expect() {
    local wanted=$1
    shift
    COMP_WORDS=("$voractl" "$@")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _voractl
    local got
    got=$(IFS='|'; echo "${COMPREPLY[*]}")
    if [[ $got != "$wanted" ]]; then
        echo "FAIL: '$*' completes to '$got', not '$wanted'"
        failures=$((failures + 1))
    fi
}

expect "list" l
expect "export" --sim e
expect "4|3|eapi" --sim-generation ""
expect "auto|always" --color = a
expect "prometheus" --sim export --format p
expect "int|real|string" --sim get --type ""
expect "--count|--changes" --sim watch --c
expect "--listen" --sim serve --l
expect "--interval" --sim serve --i
expect "list" help li
expect "record" --sim rec
expect "--redact" record --r
expect "--duration" record --d
expect 'Platform\ Information/Board\ name' --sim get 'Platform\ Information/Board\ n'
expect 'Hardware\ Monitor/Fan\ Speed/CPU|Hardware\ Monitor/Fan\ Speed/System' \
    --sim get 'Hardware\ Monitor/Fan'
expect '"Hardware Monitor/Voltage|"Hardware Monitor/Voltage/VCORE|"Hardware Monitor/Voltage/V3.3|"Hardware Monitor/Voltage/V5|"Hardware Monitor/Voltage/V12|"Hardware Monitor/Voltage/V5SB|"Hardware Monitor/Voltage/VBAT|"Hardware Monitor/Voltage/V1.05' \
    --sim watch '"Hardware Monitor/V'
expect 'GPIO/DO0|GPIO/DO0/Dir|GPIO/DO0/Level|GPIO/DO1|GPIO/DO1/Dir|GPIO/DO1/Level' \
    --sim watch GPIO/DO
# A value: the words of the item's own kind, after ITEM or NAME= alike.
expect "high|active|low|inactive" --sim set GPIO/DO1/Level ""
expect "high" --sim set DO1 = h
expect "in|out" --sim set GPIO4/Dir = ""
expect "on|off" --sim set LVDS/Backlight = o
expect "" --sim set Brightness = ""
# Short names, as voractl takes them: the shortest trailing part that names
# one item, a pin by its name; a name several items share is not offered.
expect "Brightness" --sim set Bri
expect "DO0|DO1" --sim set DO
expect "DI0/Dir|DI0|DI1/Dir|DI1" --sim get DI
expect "LVDS/Backlight" --sim set LVDS/B
expect "" --sim get Lev
expect "Relay\ K1\ coil\ driver\,\ 24\ V\ iso\*" --sim set Relay
# set offers only what can be set, after its options too, and a further
# NAME=VALUE after one.
expect "GPIO/DO0/Level|GPIO/DO1/Level" --sim set --json GPIO/DO
expect "GPIO/DO1/Level" --sim set GPIO/DO0/Level=0 GPIO/DO1/L
expect "Backlight/LVDS/Brightness" --sim set --force --type int Backlight/LVDS/Br
expect "info" --sim i
expect "" --sim --sim-generation 7 get V

if [[ $failures -gt 0 ]]; then
    exit 1
fi
echo "completion: all cases pass"
