# bash completion for zonara

_zonara_formats="labelTime24 labelTime12 timeOnly24 labelDayTime24 labelTime24Seconds"

# The saved cities' names that start with $2, shell-quoted, one a line.
_zonara_saved_cities()
{
    local name
    while IFS= read -r name; do
        [[ $name == "$2"* ]] && printf '%q\n' "$name"
    done < <("$1" list 2>/dev/null | awk -F '  +' 'NR > 1 && $1 ~ /^[0-9]+$/ { print $2 }')
}

# Time zones for the word typed so far, from zonara's own search: those that
# start with it, else those of the cities it names.
_zonara_time_zones()
{
    local zones zone prefixed=()
    zones=$("$1" search "$2" --json 2>/dev/null |
        grep -o '"identifier":"[^"]*"' | cut -d '"' -f 4 | sort -u)
    for zone in $zones; do
        [[ ${zone,,} == "${2,,}"* ]] && prefixed+=("$zone")
    done
    if ((${#prefixed[@]})); then
        printf '%s\n' "${prefixed[@]}"
    elif [[ -n $zones ]]; then
        printf '%s\n' "$zones"
    fi
}

_zonara()
{
    local cur prev words cword
    _init_completion || return

    local program=${words[0]} command="" i
    for ((i = 1; i < cword; i++)); do
        if [[ ${words[i]} != -* ]]; then
            command=${words[i]}
            break
        fi
    done

    case $prev in
    --format)
        COMPREPLY=($(compgen -W "$_zonara_formats" -- "$cur"))
        return
        ;;
    --before)
        mapfile -t COMPREPLY < <(_zonara_saved_cities "$program" "$cur")
        return
        ;;
    --at | --nickname | --date)
        return
        ;;
    esac

    if [[ -z $command ]]; then
        if [[ $cur == -* ]]; then
            COMPREPLY=($(compgen -W "--settings --panel --help --version" -- "$cur"))
        else
            COMPREPLY=($(compgen -W "line watch list at add rename pin unpin remove move search format hours" -- "$cur"))
        fi
        return
    fi

    local options=""
    case $command in
    line) options="--format --at --genmon" ;;
    watch) options="--format --json" ;;
    list) options="--json --at --date" ;;
    at) options="--json --date" ;;
    search) options="--json" ;;
    add) options="--nickname --pin" ;;
    move) options="--before --to-end" ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return
    fi

    # Only the first argument after the command is completed.
    for ((i = i + 1; i < cword; i++)); do
        [[ ${words[i]} == -* || ${words[i - 1]} == --@(format|at|nickname|before|date) ]] || return
    done
    case $command in
    add) mapfile -t COMPREPLY < <(_zonara_time_zones "$program" "$cur") ;;
    rename | pin | unpin | remove | move) mapfile -t COMPREPLY < <(_zonara_saved_cities "$program" "$cur") ;;
    format) COMPREPLY=($(compgen -W "$_zonara_formats" -- "$cur")) ;;
    hours) COMPREPLY=($(compgen -W "09:00-18:00 off" -- "$cur")) ;;
    esac
} &&
    complete -F _zonara zonara
