# Completion of orvanta-analyzer for bash. The program itself knows what may follow: it is asked with --complete.
_orvanta_analyzer() {
    local program=${COMP_WORDS[0]/#\~/$HOME}
    mapfile -t COMPREPLY < <("$program" --complete bash "$COMP_CWORD" "${COMP_WORDS[@]}" 2>/dev/null | sed '/^$/d')
    # After "--option=" the word goes on without a blank.
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]]; then
        compopt -o nospace
    fi
}
# Where the program has nothing to offer, as for a file's name, bash completes file names.
complete -o default -F _orvanta_analyzer orvanta-analyzer
