# bash completion for console-status, which is asked for its own commands, options and names.

# Splits the line up to the cursor as the shell does, but without expanding anything, into `words`.
# The last one is to be completed: `fixed` is the part of it that readline keeps, and `quote` the
# quote that is open.
_console_status_split() {
    local line=${COMP_LINE:0:COMP_POINT} word='' begun='' char i
    words=() fixed='' quote=''
    for ((i = 0; i < ${#line}; i++)); do
        char=${line:i:1}
        if [[ $char == "$quote" ]]; then
            quote=''
        elif [[ $char == \\ && $quote != \' ]]; then
            word+=${line: ++i:1}
        elif [[ -n $quote ]]; then
            word+=$char
        elif [[ $char == [\"\'] ]]; then
            quote=$char fixed=$word begun=1
        elif [[ $char != [[:blank:]] ]]; then
            word+=$char
            [[ $COMP_WORDBREAKS != *"$char"* ]] || fixed=$word
        elif [[ -n $word$begun ]]; then
            words+=("$word")
            word='' fixed='' begun=''
        fi
    done
    words+=("$word")
}

# What can stand in a place of that kind after these arguments, one a line, as JSON has it.
_console_status_candidates() {
    local program=$1 kind=$2 command=$3 name=${*: -1}
    case $kind in
        '[COMMAND]') "$program" help | sed -n 's/^  \([a-z-]*\) .*/\1/p' ;;
        OPTION) "$program" help ${command:+"$command"} | sed -n 's/^  -., \(--[a-z-]*\) .*/\1/p' ;;
        NAME | '[NAME]') "$program" describe | sed '1d; s/^  \([A-Za-z]*\).*/\1/' ;;
        LIST | '[LIST]') "$program" describe | sed -n 's/^  \([A-Za-z]*\)  *(list.*/\1/p' ;;
        PORT | '[PORT]...') "$program" ports --json | sed -n 's/^      "name": "\(.*\)",$/\1/p' ;;
        FILE | '[FILE]') compgen -f ;;
        '[NODE]' | NODE | VALUE)
            "$program" list "$name" --json | sed -n 's/^      "node": "\(.*\)",$/\1/p'
            "$program" describe | sed -n "s/^  $name  *\([^ (].*[^ ]\)   *[^ ].*/\1/p" | tr ' ' '\n'
            ;;
    esac
}

_console_status() {
    local program=$1 words fixed quote word option argument usage kind='' prefix='' ended=''
    local -A takes
    local arguments=()
    _console_status_split
    # "  -w, --watch SECONDS    Repeat ..."
    while read -r option word argument; do
        takes[$option]=$argument takes[$word]=$argument
    done < <("$program" help | sed -n 's/^  \(-.\), \(--[a-z-]*\) \([A-Z]*\)  .*/\1 \2 \3/p')
    for word in "${words[@]:1:${#words[@]}-2}"; do
        if [[ -n $kind ]]; then
            kind=''  # the value of the option before
        elif [[ -n $ended || $word != -* ]]; then
            arguments+=("$word")
        elif [[ $word == -- ]]; then
            ended=1
        else
            option=$word
            [[ $word == --* ]] || option=-${word: -1}
            kind=${takes[$option]}
        fi
    done
    local current=${words[-1]}
    if [[ -n $kind ]]; then
        :
    elif [[ -z $ended && $current == --*=* ]]; then
        prefix=${current%%=*}=
        kind=${takes[${prefix%=}]}
    elif [[ -z $ended && $current == -* ]]; then
        kind=OPTION
    else
        # "usage: console-status set NAME [NODE] VALUE"
        read -ra usage < <("$program" help ${arguments[0]:+"${arguments[0]}"} 2>/dev/null)
        kind=${usage[${#arguments[@]} + 2]}
        ((${#arguments[@]} > 0)) || kind='[COMMAND]'
    fi
    COMPREPLY=()
    while IFS= read -r word; do
        printf -v word %b "$prefix${word//\\\"/\"}"
        [[ ${word,,} == "${current,,}"* ]] || continue
        word=${word:${#fixed}}
        case $quote in
            \') word=${word//\'/\'\\\'\'} ;;
            \") word=$(sed 's/[\\"$`]/\\&/g' <<<"$word") ;;
            *) [[ -z $word ]] || printf -v word %q "$word" ;;
        esac
        # Else it would be taken for an option.
        [[ $kind == OPTION || $word != -* || -n $current$quote$ended ]] || word="-- $word"
        COMPREPLY+=("$word")
    done < <(_console_status_candidates "$program" "$kind" "${arguments[@]}" 2>/dev/null)
}
complete -F _console_status console-status
