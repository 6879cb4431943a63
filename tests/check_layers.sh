#!/usr/bin/env bash
# Checks that includes point one way: the contract and the platform know nothing of the rest, the tools nothing of
# src/, and inside src/ only the entries of the plug-in know devices.
set -euo pipefail
cd "$(dirname "$0")/.."

failed=0
# forbid FOLDER PATTERN REASON [EXCEPTION]: no source below FOLDER includes a header that matches PATTERN.
forbid() {
    local found
    found=$(grep -rnE "^#include [<\"]($2)" "$1" --include='*.h' --include='*.hpp' --include='*.cpp' --include='*.c' | grep -vE "${4:-^$}" || true)
    [[ -z $found ]] && return
    printf '%s:\n%s\n' "$3" "$found"
    failed=1
}

ours='(DevPlus|manager|device|gateway|translate)/'
forbid include "$ours|xpr/|xlog/|netutils/|veltasim/|json/|curl/" "the contract's headers include nothing but themselves"
forbid platform "$ours|velta/|veltasim/" "the platform libraries know nothing of the plug-in"
forbid platform/xpr 'xlog/|netutils/' "the runtime is at the bottom"
forbid tools/sim "$ours|velta/|xpr/|xlog/|netutils/" "the simulated device shares nothing with what it tests"
forbid tools/host "$ours|xpr/|xlog/|netutils/|veltasim/" "the reference host knows the contract alone"
forbid tools/check "$ours|xpr/|xlog/|netutils/" "the checker shares nothing with what it checks"
forbid examples "$ours|xpr/|xlog/|netutils/|veltasim/" "the examples show what the contract suffices for"
forbid src/DevPlus 'device/|manager/' "the frame knows no device" '^src/DevPlus/(VeltaDev|PluginConfig)\.cpp:'
forbid src/translate 'curl/|netutils/|manager/' "translators open no connection"
forbid src 'pthread\.h|netutils/' "the operating system and HTTP stand behind the platform" '^src/device/Transport\.cpp:'
exit $failed
