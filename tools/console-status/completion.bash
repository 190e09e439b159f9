# bash completion for console-status, which knows best what can come next.
_console_status() {
    local line
    COMPREPLY=()
    while IFS= read -r line; do
        COMPREPLY+=("$(printf %q "$line")")
    done < <("$1" complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _console_status console-status
