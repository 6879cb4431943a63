#!/usr/bin/env bash
# run_example.sh EXAMPLE LIBRARY SIMULATED_DEVICE: the example gets on with a device, and says how it is used.
set -euo pipefail
example=$1 library=$2 simulated_device=$3
work=$(mktemp -d)
device=
trap '[[ -z $device ]] || kill "$device"; rm -rf "$work"' EXIT
fail() {
    echo "$1" >&2
    tail -n 20 "$work"/* >&2
    exit 1
}

result=0
"$example" 2>"$work/usage" || result=$?
[[ $result -eq 2 ]] && grep -q '^usage: ' "$work/usage" || fail "without arguments: result $result"

mkfifo "$work/lines"
"$simulated_device" --port 0 --event-every 1 --picture --quiet --json >"$work/lines" &
device=$!
read -r line <"$work/lines" || fail "the simulated device does not start"
[[ $line =~ 127\.0\.0\.1:([0-9]+) ]] || fail "the simulated device does not tell its port: $line"
rm "$work/lines"

VELTA_PASSWORD=velta-sim-1 "$example" "$library" 127.0.0.1 "${BASH_REMATCH[1]}" admin 2 >"$work/output" 2>&1 ||
    fail "result $?"
[[ $(grep -c '^event .*AccessControllerEvent' "$work/output") -ge 2 ]] || fail "two events are missing"
grep -q '^answer .*"serialNumber"' "$work/output" || fail "the answer is missing"
! VELTA_PASSWORD=wrong "$example" "$work/none.so" 127.0.0.1 1 admin 2>/dev/null || fail "it runs without a library"
