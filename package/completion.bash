# Completion for the programs of vesk. Options are those that the program's own help shows, so that they cannot
# get out of step with it.

_vesk_options() {
    # Help is told on either stream.
    "$1" --help 2>&1 | grep -oE -- '(^|[[ ,])--?[a-z][a-z-]*' | grep -oE -- '--?[a-z][a-z-]*' | sort -u
}

# What follows an option, or nothing to say about it.
_vesk_value() {
    local program=$1 option=$2 word=$3
    case $option in
        --scenario | --replay | --socket | -c)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            ;;
        --host)
            mapfile -t COMPREPLY < <(compgen -A hostname -f -- "$word")
            ;;
        --kinds)
            local before=""
            [[ $word != *,* ]] || before=${word%,*},
            compopt -o nospace 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -P "$before" -W \
                "$("$program" --list 2>/dev/null | grep -oE '^[a-z][A-Za-z0-9_]*')" -- "${word##*,}")
            ;;
        --describe)
            local names='(MSG|NETDS?)_[A-Za-z0-9_]+|^  [A-Za-z][A-Za-z0-9_]+'
            mapfile -t COMPREPLY < <(compgen -W "$("$program" --list 2>/dev/null | grep -oE "$names")" -- "$word")
            ;;
        --only)
            compopt -o nospace 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -W "MSG_" -- "$word")
            ;;
        *) return 1 ;;
    esac
}

_vesk() {
    local program=$1 word=$2 before=$3
    COMPREPLY=()
    _vesk_value "$program" "$before" "$word" && return
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_vesk_options "$program")" -- "$word")
    elif [[ $program == *vesk.cursclient ]]; then
        mapfile -t COMPREPLY < <(compgen -A hostname -f -- "$word")
    fi
}

complete -F _vesk vesk.cursclient vesk.server vesk.simstation vesk.peer
