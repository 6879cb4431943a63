#!/usr/bin/env bash
# check_hardening.sh FORTIFIED FILE...: what is built leaves a fault in it as little room as the linker can: addresses
# at random, relocations read-only and bound at the start, no executable stack, stack protector; with FORTIFIED yes
# also checked copies.
set -euo pipefail
fortified=$1
shift
failed=0
lacks() {
    echo "$1 lacks $2" >&2
    failed=1
}
for file in "$@"; do
    headers=$(readelf --wide --file-header --program-headers --dynamic "$file")
    symbols=$(readelf --wide --dyn-syms "$file")
    grep -q 'Type: *DYN' <<<"$headers" || lacks "$file" "position-independent code"
    grep -q 'GNU_RELRO' <<<"$headers" || lacks "$file" "read-only relocations"
    grep -qE 'BIND_NOW|FLAGS_1.*NOW' <<<"$headers" || lacks "$file" "binding at the start"
    grep -qE 'GNU_STACK .* RW ' <<<"$headers" || lacks "$file" "a stack that can't be executed"
    grep -q '__stack_chk_fail' <<<"$symbols" || lacks "$file" "the stack protector"
    [ "$fortified" != yes ] || grep -qE '__[a-z]+_chk@' <<<"$symbols" || lacks "$file" "checked copies"
done
exit $failed
