# bash completion for voractl                                -*- shell-script -*-
#
# Completes commands, options and their values, and item and group paths,
# which it reads through voractl itself (with the --module and --sim options
# already on the line), so they are the board's own.

# The words before the cursor with "--opt" "=" "value" joined again (bash
# splits words at "=").
_voractl_words() {
    local i
    _voractl_line=()
    for ((i = 0; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} == = && ${#_voractl_line[@]} -gt 0 ]]; then
            _voractl_line[-1]+="=${COMP_WORDS[i + 1]}"
            ((i++))
        else
            _voractl_line+=("${COMP_WORDS[i]}")
        fi
    done
}

# Item paths, one a line: with "groups" every block and group path too,
# with "settable" only items that can be set.
_voractl_paths() {
    local -a options=()
    local i word
    for ((i = 1; i < ${#_voractl_line[@]}; i++)); do
        word=${_voractl_line[i]}
        case $word in
            --module | --sim-generation) options+=("$word" "${_voractl_line[i + 1]}"); ((i++)) ;;
            --module=* | --sim | --sim=* | --sim-generation=*) options+=("$word") ;;
            -*) ;;
            *) break ;;
        esac
    done
    "${_voractl_line[0]}" "${options[@]}" --quiet list --json 2>/dev/null |
        awk -v want="${1:-}" '
            function text(line) { sub(/^ *"[a-z]+": "/, "", line); sub(/",?$/, "", line); return line }
            /^    "path": /  { path = text($0) }
            /^    "block": / { block = text($0) }
            /^    "group": / { group = text($0) }
            /^    "access": / {
                if (want == "groups") {
                    if (!seen[block]++) print block
                    if (group != "" && !seen[block "/" group]++) print block "/" group
                }
                if (want != "settable" || text($0) != "r") print path
            }'
}

# Offers the lines on standard input that start with the current word, which
# may begin with a quote or hold backslash-escaped blanks.
_voractl_offer() {
    local cur=$1 quote= path
    if [[ $cur == [\"\']* ]]; then
        quote=${cur:0:1}
        cur=${cur:1}
    else
        cur=${cur//\\ / }
    fi
    COMPREPLY=()
    while IFS= read -r path; do
        [[ $path == "$cur"* ]] || continue
        if [[ -n $quote ]]; then
            COMPREPLY+=("$quote$path")
        else
            COMPREPLY+=("$(printf '%q' "$path")")
        fi
    done
}

_voractl() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local command= word
    _voractl_words
    for word in "${_voractl_line[@]:1}"; do
        case $word in
            info | caps | list | get | set | watch | export | record | serve | help) command=$word; break ;;
        esac
    done
    [[ $prev == = ]] && prev=${COMP_WORDS[COMP_CWORD - 2]}
    case $prev in
        --module | --output | --web-config)
            compopt -o filenames 2>/dev/null
            COMPREPLY=($(compgen -f -- "$cur")); return ;;
        --sim)
            if [[ ${COMP_WORDS[COMP_CWORD - 1]} == = ]]; then
                compopt -o filenames 2>/dev/null
                COMPREPLY=($(compgen -f -- "$cur"))
                return
            fi ;;
        --sim-generation) COMPREPLY=($(compgen -W "4 3 eapi" -- "$cur")); return ;;
        --color) [[ ${COMP_WORDS[COMP_CWORD - 1]} == = ]] &&
                     { COMPREPLY=($(compgen -W "auto always never" -- "$cur")); return; } ;;
        --format) COMPREPLY=($(compgen -W "senml prometheus" -- "$cur")); return ;;
        --type) COMPREPLY=($(compgen -W "int real string" -- "$cur")); return ;;
        --interval | --count | --listen | --duration) return ;;
    esac
    local options
    case $command in
        "") options="--module --sim --sim-generation --sim-reset --timing --trace --raw --quiet --color --help --version" ;;
        info | caps) options="--json --help" ;;
        list) options="--all --json --help" ;;
        get | set) options="--json --type --force --help" ;;
        watch) options="--json --interval --count --help" ;;
        export) options="--format --output --help" ;;
        record) options="--redact --output --duration --interval --help" ;;
        serve) options="--listen --web-config --interval --help" ;;
        help) COMPREPLY=($(compgen -W "info caps list get set watch export record serve" -- "$cur")); return ;;
    esac
    if [[ $cur == -* || ($command == @(info|caps|export|record|serve) && -n $command) ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    elif [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "info caps list get set watch export record serve help" -- "$cur"))
    elif [[ $command == @(list|watch) ]]; then
        _voractl_offer "$cur" < <(_voractl_paths groups)
    elif [[ $command == get ]]; then
        _voractl_offer "$cur" < <(_voractl_paths)
    elif [[ $command == set && $cur != *=* ]]; then
        # NAME=VALUE: the names of items that can be set; ITEM VALUE: the
        # item only, the first word after the command and its options.
        local i after= previous=
        for ((i = 0; i < ${#_voractl_line[@]}; i++)); do
            word=${_voractl_line[i]}
            if [[ -z $after ]]; then
                [[ $word == set ]] && after=1
            elif [[ $word == --type ]]; then
                ((i++))
            elif [[ $word != -* ]]; then
                previous=$word
            fi
        done
        [[ $prev == --type ]] && return
        if [[ -z $previous || $previous == *=* ]]; then
            _voractl_offer "$cur" < <(_voractl_paths settable)
        fi
    fi
} &&
    complete -F _voractl voractl
