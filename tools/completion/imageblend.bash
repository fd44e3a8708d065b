# SPDX-License-Identifier: Apache-2.0
# Bash completion for imageblend. Source it, or install it as "imageblend" in
# /usr/share/bash-completion/completions or ~/.local/share/bash-completion/completions.

_imageblend() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command=${COMP_WORDS[1]} options='' kind=file
    COMPREPLY=()

    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W \
            'blend verify size cutout explain batch --help --version' -- "$word")
        return
    fi
    local placing='--mask --soft --at --anchor --zoom --angle --surroundings --grow --no-fit --as-is'
    case $command in
        blend | verify) options="$placing --help" ;;
        explain) options="$placing --dump --help" ;;
        size | cutout) options='--mask --soft --help' ;;
        batch) options='--jobs --overwrite --first-line --report --help' ;;
        *) return ;;
    esac
    options+=' --strict --quiet --any-format --max-pixels'
    case $before in
        --anchor)
            mapfile -t COMPREPLY < <(compgen -W 'centre left right top bottom' -- "$word")
            return
            ;;
        --at | --surroundings | --grow | --zoom | --angle | --jobs | --first-line | --max-pixels) return ;; # a number of the user's
        --dump) kind=directory ;;
    esac
    if [[ $word == -* && $before != --mask && $before != --dump && $before != --report ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    fi
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -A "$kind" -- "$word")
}
complete -F _imageblend imageblend
