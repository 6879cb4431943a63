#!/usr/bin/env bash
# Checks the library $2 with the program $1: the findings must be exactly those that follow, "ID RESULT" each, and all
# other checks must have passed.
set -euo pipefail
# A sanitized program looks for the thread-local data of loaded libraries in the wrong place, and ends there.
export ASAN_OPTIONS=intercept_tls_get_addr=0
checker=$1 library=$2
shift 2
report=$("$checker" "$library" --time-limit "${TIME_LIMIT:-240}" ${ONLY:+--only "$ONLY"}) && status=0 || status=$?
echo "$report"
expected=$(printf '%s\n' "$@" | sort)
found=$(sed '/^Findings/,$d' <<<"$report" | awk '$2 ~ /^(FAIL|CRASHED|HUNG)$/ { print $1, $2 }' | sort)
diff <(echo "$expected") <(echo "$found")
all=$(awk 'END { print $1 }' <<<"$report")
passed=$(awk 'END { print $3 }' <<<"$report")
[[ $status -eq $(($# > 0)) && $((all - passed)) -eq $# ]]
