# bash completion for ql240-clip

_ql240_clip() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} options
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'info track events cut repair --help --version' -- "$word")
        return
    fi
    case $before in
        -f | --format)
            mapfile -t COMPREPLY < <(compgen -W 'gpx kml geojson csv' -- "$word")
            return
            ;;
        --threshold | --from | --to) return ;;
        -o | --output | --like)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
            ;;
    esac
    case $command in
        info) options='--json' ;;
        track) options='--format --output --force --accelerations' ;;
        events) options='--threshold --json' ;;
        cut) options='--from --to --no-sound --output --force' ;;
        repair) options='--like --output --force' ;;
        *) return ;;
    esac
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options --help --version" -- "$word")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -d -- "$word"; compgen -f -X '!*.@(mp4|avi|MP4|AVI)' -- "$word")
    fi
}

complete -F _ql240_clip ql240-clip
