# Completion of tdkplay's command line for bash.

_tdkplay_names() {
    # Names may have blanks in them: each stands in one line of the list, and is quoted unless the user has begun to.
    local current=$1 typed=${COMP_WORDS[COMP_CWORD]} name
    while IFS= read -r name; do
        if [[ -z $name || ${name,,} != "${current,,}"* ]]; then continue; fi
        if [[ $typed != [\"\']* ]]; then printf -v name '%q' "$name"; fi
        COMPREPLY+=("$name")
    done
}

_tdkplay_files() {
    local current=$1 pattern=$2 path
    compopt -o filenames 2>/dev/null
    while IFS= read -r path; do
        if [[ -d $path || ${path,,} =~ $pattern ]]; then COMPREPLY+=("$path"); fi
    done < <(compgen -f -- "$current")
}

_tdkplay() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} player=${COMP_WORDS[0]}
    local unquoted=${current#[\"\']}
    unquoted=${unquoted//\\/}
    COMPREPLY=()
    case $previous in
        --viz)
            if [[ $unquoted == */* ]]; then
                _tdkplay_files "$unquoted" '\.tkv$'
            else
                _tdkplay_names "$unquoted" < <("$player" --list 2>/dev/null | cut -f 1)
            fi
            return ;;
        --device)
            _tdkplay_names "$unquoted" < <("$player" --devices 2>/dev/null | grep ^output | cut -f 2)
            _tdkplay_names "$unquoted" <<<default
            return ;;
        --capture)
            _tdkplay_names "$unquoted" < <("$player" --devices 2>/dev/null | cut -f 2)
            return ;;
        --effects | --randomize | --audio)
            mapfile -t COMPREPLY < <(compgen -W 'on off' -- "$current")
            # The switch may stand alone, so what comes next may be a file as well.
            if [[ -n $current && ${#COMPREPLY[@]} -gt 0 ]]; then return; fi ;;
        --output)
            mapfile -t COMPREPLY < <(compgen -W 'auto pulse silent' -- "$current")
            return ;;
        --size)
            mapfile -t COMPREPLY < <(compgen -W '640x480 1280x720 1920x1080' -- "$current")
            return ;;
        --check)
            _tdkplay_files "$unquoted" '\.tkv$'
            return ;;
        --snapshot | --sheet)
            _tdkplay_files "$unquoted" '\.png$'
            return ;;
        --render)
            _tdkplay_files "$unquoted" '\.(mp4|mkv|y4m)$'
            return ;;
        --make-demo)
            _tdkplay_files "$unquoted" '\.wav$'
            return ;;
        --at | --duration | --fps | --offset | --seed | --views | --volume)
            return ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W '--at --audio --capture --check --device --devices --duration --effects --fps --headless
            --help --json --list --loop --make-demo --no-audio --offset --output --randomize --render --reset-settings
            --seed --settings --sheet --shuffle --size --snapshot --version --views --viz --volume --window' \
            -- "$current")
        return
    fi
    _tdkplay_files "$unquoted" '\.(wav|aiff?|aifc|flac|og[ga]|opus|mp3|m3u8?)$'
}

complete -F _tdkplay tdkplay
