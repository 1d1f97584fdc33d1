# Completion of bash for the programs of Tessaron ZEK. What they understand they are asked themselves, by their help.

# Words "--option" and "/Switch" in the help of a program.
_tessaron_zek_schalter() {
    "$@" --help 2>/dev/null | grep -oE -- '(^|[ ,[])(--[a-z][a-z0-9-]*|/[A-Z][a-z]*)' | tr -d ' ,[' | sort -u
}

_tessaron_zek_dateien() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

# The commands of zek with their other names, then the options of the chosen one, its forms, and files.
_zek() {
    local programm=$1 wort=$2 vor=$3 befehl= i
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ ${COMP_WORDS[i]} == -* ]] || { befehl=${COMP_WORDS[i]}; break; }
    done
    COMPREPLY=()
    if [[ $vor == --zeit ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'deutsch iso' -- "$wort")
    elif [[ $vor == --programm ]]; then
        mapfile -t COMPREPLY < <(compgen -d -- "$wort")
    elif [[ $vor == --von || $vor == --bis || $vor == --titel ]]; then
        return
    elif [[ $wort == -* ]]; then
        # shellcheck disable=SC2086
        mapfile -t COMPREPLY < <(compgen -W "$(_tessaron_zek_schalter "$programm" $befehl)" -- "$wort")
    elif [[ -z $befehl ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$programm" --help 2>/dev/null |
            sed -nE '/^Befehle:/,/^$/s/^  ([^ ]+(, [^ ]+)*)  .*/\1/p' | tr ',' '\n')" -- "$wort")
    else
        _tessaron_zek_dateien "$wort"
    fi
}

# The recorder: its options and switches.
_tessaron_zek() {
    COMPREPLY=()
    if [[ -z $2 || $2 == -* || $2 == /* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_tessaron_zek_schalter "$1")" -- "$2")
    fi
}

# The simulator: options; behind one that takes a file, files.
_tws_simulator() {
    COMPREPLY=()
    case $3 in
        --log | --script | --replay | --port-file) _tessaron_zek_dateien "$2" ;;
        --echo) mapfile -t COMPREPLY < <(compgen -W 'always never random delayed' -- "$2") ;;
        --weekend | --pacing | --message-limit | --l2) mapfile -t COMPREPLY < <(compgen -W 'on off' -- "$2") ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$(_tessaron_zek_schalter "$1")" -- "$2") ;;
    esac
}

complete -F _zek zek
complete -F _tessaron_zek tessaron-zek tessaron-zek-dienst TessaronZEK TessaronZEKDienst
complete -F _tws_simulator tws-simulator
