# bash completion for murkwell-cli                                          -*- shell-script -*-

# The last of the comma-separated words of $cur, from "$@".
_murkwell_cli_list() {
    local done=""
    if [[ $cur == *,* ]]; then
        done=${cur%,*},
    fi
    mapfile -t COMPREPLY < <(compgen -P "$done" -W "$*" -- "${cur##*,}")
    compopt -o nospace
}

_murkwell_cli() {
    local cur prev words cword
    _init_completion -n : || return

    local commands="redact scan text info"
    local sources='@(pdf|png|jpg|jpeg|tif|tiff|bmp|gif|heic|heif|murkwell)'
    local kinds=(email ssn phone creditCard ipAddress faces)
    local search="--detect --find --fuzzy --pages"
    local redact="-o --output --out-dir --save --box --style --force --json"

    local command="" word
    for word in "${words[@]:1:cword-1}"; do
        if [[ $word == @(redact|scan|text|info) ]]; then
            command=$word
            break
        fi
    done
    if [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands --help --version" -- "$cur")
        return
    fi

    case $command:$prev in
    redact:-o | redact:--output | *:--password-file)
        _filedir
        return
        ;;
    redact:--save)
        _filedir murkwell
        return
        ;;
    redact:--out-dir)
        _filedir -d
        return
        ;;
    redact:--style)
        mapfile -t COMPREPLY < <(compgen -W "solidBlack solidWhite noise" -- "$cur")
        return
        ;;
    @(redact|scan):--detect)
        if [[ $cur == *,* ]]; then
            _murkwell_cli_list "${kinds[@]}"
        else
            _murkwell_cli_list all "${kinds[@]}"
        fi
        return
        ;;
    @(redact|scan):--pages | text:--page)
        mapfile -t COMPREPLY < <(compgen -W all -- "$cur")
        return
        ;;
    @(redact|scan):--find | redact:--box)
        return
        ;;
    esac

    if [[ $cur != -* ]]; then
        _filedir "$sources"
        return
    fi
    local options="--help --password-file"
    case $command in
    redact) options+=" $search $redact" ;;
    scan) options+=" $search" ;;
    text) options+=" --page" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
} &&
    complete -F _murkwell_cli murkwell-cli
