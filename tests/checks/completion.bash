#!/usr/bin/env bash
# completion.bash FOLDER: what shells offer after the words that a user has typed, by the scripts below FOLDER. zsh and
# fish are asked where they are installed.
set -euo pipefail

folder=$1
# shellcheck source=/dev/null
source "$folder/bash-completion/completions/orvanta-analyzer"
# shellcheck source=/dev/null
source "$folder/bash-completion/completions/orvlog-converter"
failures=0

fail() {
    echo "$@"
    failures=$((failures + 1))
}

# expect WANTED PROGRAM WORD...: completing the last word offers WANTED, or nothing when WANTED is empty.
expect() {
    local wanted=$1 program=$2
    shift
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    COMPREPLY=()
    "_${program//-/_}"
    if [[ -z $wanted && ${#COMPREPLY[@]} -eq 0 ]] || printf '%s\n' "${COMPREPLY[@]}" | grep -qxF -e "$wanted"; then
        return
    fi
    fail "bash: completing \"$*\" offers \"${COMPREPLY[*]}\", not \"$wanted\""
}

# Outside a real completion there is no option of it to set.
# shellcheck disable=SC2317 # called by the completion
compopt() { :; }

cd "$folder"
expect analyze orvanta-analyzer ana
expect filter-suppressed orvanta-analyzer ""
expect --threads orvanta-analyzer analyze --thr
expect --output-file orvanta-analyzer analyze -q --out
expect "" orvanta-analyzer analyze --dump # hidden options stay hidden
expect "" orvanta-analyzer analyze -o "" # a file's name: left to bash
expect "" orvanta-analyzer analyze -f ""
expect man orvanta-analyzer analyze -r m # a folder
expect MISRA orvanta-analyzer analyze -a MI
expect skip-analysis orvanta-analyzer analyze --regenerate-depend-info = sk # as bash cuts --option=value
expect --allow-missing orvanta-analyzer merge --al
expect "" orvanta-analyzer merge re # a part's name: left to bash
expect --warning orvanta-analyzer suppress --w
expect "" orvanta-analyzer filter-suppressed --w
expect sarif orvlog-converter report.json -t sa
expect --fail-on orvlog-converter report.json --fail

if command -v fish >/dev/null; then
    # ask WANTED LINE
    ask() {
        local offered
        offered=$(fish --no-config -c "source fish/vendor_completions.d/orvanta-analyzer.fish
source fish/vendor_completions.d/orvlog-converter.fish
complete -C '$2'" | cut -f 1)
        grep -qxF -e "$1" <<<"$offered" || fail "fish: completing \"$2\" offers \"$offered\", not \"$1\""
    }
    ask analyze "orvanta-analyzer ana"
    ask --threads "orvanta-analyzer analyze --thr"
    ask MISRA "orvanta-analyzer analyze -a MI"
    ask man/ "orvanta-analyzer analyze -r m"
    ask sarif "orvlog-converter -t sa"
fi
if command -v zsh >/dev/null; then
    for script in zsh/site-functions/*; do
        zsh -n "$script" || fail "zsh: $script is no script of zsh"
    done
fi
exit $((failures > 0))
