#!/usr/bin/env bash
# check_abi.sh [renew]: what hosts were built against still holds. Compares the contract with its last released description
# in abi/: the records and tables with all that they reach (types.abi), and the numbers, keys and exported names
# (names.txt). What is new does no harm; what is gone or different does. renew writes the description anew, at a release.
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# describe INCLUDE_FOLDER OUTPUT: a library that holds nothing but every type of the headers, and what it looks like.
describe() {
    printf '#include <velta/velta.h>\nextern const int contract;\nconst int contract = 1;\n' >"$work/contract.c"
    (cd "$work" && cc -std=c99 -g -fno-eliminate-unused-debug-types -fdebug-prefix-map="$work=." -shared -fPIC \
        -I"$1" contract.c -o contract.so)
    mkdir -p "$2"
    abidw --load-all-types --no-corpus-path --no-comp-dir-path --no-show-locs "$work/contract.so" >"$2/types.abi"
    {
        cc -std=c99 -I"$1" -E -dM "$work/contract.c" | grep -E '^#define VELTA_\w+ .' | sed 's/^#define //'
        sed -n '/global:/,/local:/s/^ *\([A-Za-z_0-9]*\);$/export \1/p' src/exports.map
    } | LC_ALL=C sort >"$2/names.txt"
}

# differs OLD NEW: tells what is gone or different, and whether anything is. Harmless differences count as well: two members
# of one type that change places are, to abidiff, two that change their names.
differs() {
    local result=0 lost
    abidiff --harmless --non-reachable-types --no-show-locs "$1/types.abi" "$2/types.abi" >"$work/report" || result=$?
    [[ $((result & 3)) -eq 0 ]] || { cat "$work/report" >&2 && exit 1; }
    lost=$(LC_ALL=C comm -23 "$1/names.txt" "$2/names.txt")
    if grep -qE '^[A-Z].* summary:.* [1-9][0-9]* ([Rr]emoved|[Cc]hanged)' "$work/report"; then
        sed '/^[0-9]* added type/,$d' "$work/report"
    elif [[ -z $lost ]]; then
        return 1
    fi
    [[ -z $lost ]] || printf 'gone or different:\n%s\n' "$lost"
}

# A check that sees no change would be worse than none: it has to find these.
check_that_changes_are_seen() {
    local header change
    while read -r header change; do
        rm -rf "$work/include"
        cp -r include "$work/include"
        sed -i -E "$change" "$work/include/velta/$header"
        ! cmp -s "include/velta/$header" "$work/include/velta/$header" || { echo "nothing to change: $change" >&2 && exit 1; }
        describe "$work/include" "$work/changed"
        differs "$work/now" "$work/changed" >/dev/null || { echo "a change is not seen: $change" >&2 && exit 1; }
    done <<'END'
event.h s/ int32_t length;/ uint32_t length;/
event.h s/\} VELTA_EventTable;/int (*More)(void); &/
gateway.h s/(DeviceLoop.*unsigned) int/\1 long/
connect.h s/int \(\*Connect\)\(void\* instance, char\* url\);//
connect.h s/(VELTA_STATUS_LOCKED = )12/\113/
stream.h s/\*Pause\)/*Pau)/; s/\*Resume\)/*Pause)/; s/\*Pau\)/*Resume)/
plugin.h s/VELTA_InitFunction Init;/VELTA_InitFunction Init, Again;/
result.h s/0x20000009/0x2000000A/
gateway.h s/Device\.IVELTA/Device.IOther/
END
}

if [[ ${1:-} == renew ]]; then
    describe "$PWD/include" abi
    echo "abi/ describes the contract as it is now"
    exit
fi
describe "$PWD/include" "$work/now"
if differs abi "$work/now"; then
    echo "hosts that were built against the last release would break; if that is meant: ./dev renew-abi" >&2
    exit 1
fi
check_that_changes_are_seen
