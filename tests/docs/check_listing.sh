#!/usr/bin/env bash
# check_listing.sh COMPILER FOLDER: the listing of the host guide compiles.
set -euo pipefail
listing=$(sed -n '/^```c$/,/^```$/p' "$2/docs/host-guide.md" | grep -v '^```')
"$1" -std=c99 -Wall -Wextra -Werror -fsyntax-only -I "$2/include" -x c - <<<"$listing"
