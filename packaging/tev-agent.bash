# Completion of tev-agent's words for bash.

# Adds those of the words behind the first that begin with it. They come from a node and may hold anything, so nothing but a
# comparison is done to them.
_tev_agent_offer() {
    local begun=$1 word
    shift
    for word in "$@"; do
        [[ $word != "$begun"* ]] || COMPREPLY+=("$(printf %q "$word")")
    done
}

# Writes what bash makes of a word as it is typed: without its quotes, and with the user's home for ~/. Nothing else is
# expanded.
_tev_agent_meant() {
    local word=$1 meant= quote= i
    for ((i = 0; i < ${#word}; ++i)); do
        case $quote${word:i:1} in
            "'" | '"') quote=${word:i:1} ;;
            "''" | '""') quote= ;;
            '\') meant+=${word:$((++i)):1} ;;
            '"\')
                [[ ${word:i+1:1} != [\"\\\$\`] ]] || ((++i))
                meant+=${word:i:1}
                ;;
            *) meant+=${word:i:1} ;;
        esac
    done
    [[ $word != "~/"* ]] || meant=$HOME/${meant#"~/"}
    printf %s "$meant"
}

# The schema ids of a node, one a line. No component is loaded that the command line names.
_tev_agent_ids() {
    timeout 5 "$1" "${@:2}" --output json list 2>/dev/null </dev/null |
        sed -nE 's/^\{"schemaId":"([^"\\]*)".*/\1/p'
}

_tev_agent() {
    COMPREPLY=()
    # Bash takes a word apart at = and :, so a DN, a URI and --output=json come in pieces.
    local words=() word isPiece=
    for word in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        if [[ $word == [=:]* || $isPiece ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
        isPiece=
        [[ $word != *[=:] ]] || isPiece=yes
    done

    local commands=(list get export check shell help) command= positions=0 node=() option= i
    local last=$((${#words[@]} - 1))
    for ((i = 1; i < last; ++i)); do
        case ${words[i]} in
            --node | --models | --objects)
                option=${words[i]}
                ((++i < last)) && node+=("$option" "$(_tev_agent_meant "${words[i]}")") && option=
                ;;
            --node=* | --models=* | --objects=*) node+=("$(_tev_agent_meant "${words[i]}")") ;;
            --component | --config | --log-file | --log-level | --output | --jobs | --password-file | --filter | --only | \
                --class | --parent | --attribute | --time-limit)
                option=${words[i]}
                ((++i < last)) && option=
                ;;
            -*) ;;
            *) if [ -z "$command" ]; then command=${words[i]}; else ((++positions)); fi ;;
        esac
    done

    local current=${words[last]}
    if [[ $current == --*=* ]]; then
        option=${current%%=*}
        current=${current#*=}
    fi
    # Where nothing is offered, the shell offers the names of files.
    case $option in
        --output) _tev_agent_offer "$current" table json ;;
        --log-level) _tev_agent_offer "$current" 0 1 2 3 4 5 6 7 8 ;;
    esac
    [ -z "$option" ] || return 0

    if [[ $current == -* ]]; then
        _tev_agent_offer "$current" --node --models --objects --component --config --log-level --log-file --output --help \
            --version
        case $command in
            list) _tev_agent_offer "$current" --filter ;;
            export) _tev_agent_offer "$current" --all --jobs --password-stdin --password-file ;;
            check) _tev_agent_offer "$current" --in-process --only --class --parent --attribute --time-limit ;;
        esac
    elif [[ -z $command || ($command == help && $positions -eq 0) ]]; then
        _tev_agent_offer "$current" "${commands[@]}"
    elif [[ $command == @(get|export) && $positions -eq 0 && $current != *=* && ! " ${words[*]} " == *" --all "* ]]; then
        local ids
        mapfile -t ids < <(_tev_agent_ids "${words[0]}" "${node[@]}")
        _tev_agent_offer "$current" "${ids[@]}"
    elif [ "$command" = get ]; then
        _tev_agent_offer "$current" schemaId identifier baseModelIdentifier version baseModelVersion selectedModelOptions
    fi
}

complete -o default -F _tev_agent tev-agent
