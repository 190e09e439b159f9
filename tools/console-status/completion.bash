# bash completion for console-status, from what the program itself says of its commands and names.

# What can stand in a place of that kind behind these words, a line each.
_console_status_words() {
    local program=$1 kind=$2 command=$3 name=${*: -1}
    case $kind in
        '[COMMAND]') "$program" help | sed -n 's/^  \([a-z-]*\) .*/\1/p' ;;
        OPTION) "$program" help ${command:+"$command"} | sed -n 's/^  -., \(--[a-z]*\) .*/\1/p' ;;
        NAME) "$program" settings --json | sed -n 's/^    "\([A-Z].*\)": {$/\1/p' ;;
        LIST) "$program" settings --json | sed -n '/^  "lists"/,$s/^    "\([A-Z].*\)": {$/\1/p' ;;
        PORT) "$program" ports --json | sed -n 's/^      "name": "\(.*\)",$/\1/p' ;;
        '[NODE]' | NODE | VALUE)
            "$program" list "$name" --json | sed -n 's/^      "node": "\(.*\)",$/\1/p'
            "$program" get "$name" --json | sed -n '/"words": \[/,/\]/s/^    "\(.*[^,]\)",\{0,1\}$/\1/p'
            ;;
    esac | sed 's/\\\(["\\]\)/\1/g'  # as JSON has it
}

_console_status() {
    local current=${COMP_WORDS[COMP_CWORD]} word kind usage words=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ $word == -* ]] || words+=("$word")
    done
    # "usage: console-status set NAME [NODE] VALUE"
    read -ra usage < <("$1" help ${words[0]:+"${words[0]}"} 2>/dev/null)
    kind=${usage[${#words[@]} + 2]}
    ((${#words[@]} > 0)) || kind='[COMMAND]'
    [[ ${COMP_WORDS[COMP_CWORD - 1]} != --port ]] || kind=PORT
    [[ $current != -* ]] || kind=OPTION
    COMPREPLY=()
    while IFS= read -r word; do
        [[ ${word,,} != "${current,,}"* ]] || COMPREPLY+=("$(printf %q "$word")")
    done < <(_console_status_words "$1" "$kind" "${words[@]}" 2>/dev/null)
}
complete -F _console_status console-status
