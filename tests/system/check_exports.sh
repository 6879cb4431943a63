#!/usr/bin/env bash
# check_exports.sh LIBRARY LIST: the library defines exactly the dynamic symbols that the version script lists.
set -euo pipefail
wanted=$(sed -n '/global:/,/local:/p' "$2" | grep -oE '[A-Za-z_0-9]+;' | tr -d ';' | sort)
shown=$(nm -D --defined-only "$1" | awk '{ print $3 }' | sort)
if ! diff <(echo "$wanted") <(echo "$shown"); then
    echo "the exported names differ from the list (<: missing, >: not in the list)" >&2
    exit 1
fi
