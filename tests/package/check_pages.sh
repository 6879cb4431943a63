#!/usr/bin/env bash
# check_pages.sh ROOT: for each installed program, the manual page names every option and command that --help does, and
# the completions offer them.
set -euo pipefail
root=$1
fail() {
    echo "$1" >&2
    exit 1
}

# completed WORD...: what bash offers for the last of them.
completed() {
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
    "_${1//-/_}"
    printf '%s\n' "${COMPREPLY[@]}"
}

# A completion file is read inside a function, as the shell's loader does.
load() { . "$root/usr/share/bash-completion/completions/$1"; }

# has LINES LINE
has() { [[ $'\n'$1$'\n' == *$'\n'"$2"$'\n'* ]]; }

# check WORD...: a program, or one of its commands.
check() {
    local word help offered commands
    help=$("$root/usr/bin/$1" "${@:2}" --help)
    offered=$(completed "$@" -)
    for word in $(grep -oE '^  (-[a-z],)?--[a-z0-9-]+' <<<"$help" | grep -oE '\-\-[a-z0-9-]+'); do
        [[ $page == *"${word//-/\\-}"* ]] || fail "the manual page lacks $* $word"
        has "$offered" "$word" || fail "bash does not complete $* $word"
        [[ $zsh == *"$word:"* ]] || fail "zsh lacks $* $word"
    done
    commands=$(sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p' <<<"$help")
    offered=$(completed "$@" "")
    for word in $commands; do
        has "$page" ".SS ${*:2}${2:+ }${word//-/\\-}" || fail "the manual page lacks $* $word"
        has "$offered" "$word" || fail "bash does not complete $* $word"
        check "$@" "$word"
    done
}

for program in velta-host velta-sim velta-check; do
    page=$(zcat "$root/usr/share/man/man1/$program.1.gz")
    zsh=$(<"$root/usr/share/zsh/vendor-completions/_$program")
    load "$program"
    check "$program"
    ! command -v zsh >/dev/null || zsh -n "$root/usr/share/zsh/vendor-completions/_$program"
done
[[ $(completed velta-host --log-level d) == debug ]] || fail "values of an option are not completed"
[[ $(completed velta-host doors --device 127.0.0.1 hold-o) == hold-open ]] || fail "no command behind an option's value"
[[ $(cd "$root" && completed velta-host --library us) == usr ]] || fail "files are not completed"
[[ -z $(completed velta-host --user "") ]] || fail "a text is completed"
