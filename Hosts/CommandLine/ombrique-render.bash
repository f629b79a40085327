# Completion of ombrique-render's command line in bash: its options, and the names of files. Values are the user's own.

_ombrique_render() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    # The equals sign of --option=value is a word by itself.
    [ "$word" != = ] || word=
    [ "$before" != = ] || before=${COMP_WORDS[COMP_CWORD - 2]}
    COMPREPLY=()
    case $before in
    --contrast | --brightness | --frames | --part | --jobs | --compression | --format) return ;;
    --sheet | --into) ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W '
                --into --format --contrast --brightness --frames --part --skip-existing -n --no-overwrite --list-missing
                --jobs --compare --sheet --autocc --compression -q --quiet -v --verbose --about -h --help --version' -- "$word")
            return
        fi
        ;;
    esac
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
}

complete -F _ombrique_render ombrique-render
