#!/usr/bin/env bash
# completion.bash COMPLETION_FILE PROGRAM: what bash offers after the words that a user has typed.
set -euo pipefail

# shellcheck source=/dev/null
source "$1"
program=$2
failures=0

# expect WANTED WORD...: completing the last word offers WANTED, or nothing when WANTED is empty.
expect() {
    local wanted=$1
    shift
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _orvanta_analyzer
    if [[ -z $wanted && ${#COMPREPLY[@]} -eq 0 ]] || printf '%s\n' "${COMPREPLY[@]}" | grep -qxF -e "$wanted"; then
        return
    fi
    echo "completing \"$*\" offers \"${COMPREPLY[*]}\", not \"$wanted\""
    failures=$((failures + 1))
}

# Outside a real completion there is no option of it to set.
# shellcheck disable=SC2317 # called by the completion
compopt() { :; }

expect analyze ana
expect filter-suppressed ""
expect --threads analyze --thr
expect --output-file analyze -q --out
expect "" analyze --dump # hidden options stay hidden
expect "" analyze -o ""  # a file's name: left to bash
exit $((failures > 0))
