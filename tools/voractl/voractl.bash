# bash completion for voractl                                -*- shell-script -*-
#
# Completes commands, options and their values, and item and group paths.
# It keeps no list of its own: the commands and options come from voractl's
# command table (voractl --commands, voractl --options [COMMAND]), so the
# completion of a voractl is always that voractl's, and the item and group
# paths from the board through voractl itself (with the --module and --sim
# options already on the line), so they are the board's own.

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
# with "settable" only items that can be set, with "units" each settable
# item's names, a tab and its unit. An item is also offered by the shortest
# of its trailing parts that names nothing else ("Brightness" for
# "Backlight/LVDS/Brightness"), a pin's level by the pin's name ("DO1"), as
# voractl takes them. voractl's own options on the line that take a value
# (the module, the simulated board) are passed on; flags, which change
# nothing there or change the board, are not.
_voractl_paths() {
    local -a options=()
    local i word
    for ((i = 1; i < ${#_voractl_line[@]}; i++)); do
        word=${_voractl_line[i]}
        [[ $word == -* ]] || break
        case ${_voractl_global[${word%%=*}]-} in
            value | file | words*) options+=("$word")
                                   [[ $word == *=* ]] || { options+=("${_voractl_line[i + 1]}"); ((i++)); } ;;
            =*) options+=("$word") ;;
        esac
    done
    "${_voractl_line[0]}" "${options[@]}" --quiet list --json 2>/dev/null |
        awk -v want="${1:-}" '
            function text(line) { sub(/^ *"[a-z]+": "/, "", line); sub(/",?$/, "", line); return line }
            # Counts each trailing part of `path` ("a/b/c": "c", "b/c", "a/b/c").
            function parts(path,   k, n, piece, tail) {
                n = split(path, piece, "/"); tail = ""
                for (k = n; k >= 1; k--) { tail = piece[k] (tail == "" ? "" : "/" tail); names[tail]++ }
            }
            # The trailing parts of `path` that name one thing, shortest first.
            function unique(path,   k, n, piece, tail, found) {
                n = split(path, piece, "/"); tail = ""; found = ""
                for (k = n; k >= 1; k--) {
                    tail = piece[k] (tail == "" ? "" : "/" tail)
                    if (names[tail] == 1) found = found (found == "" ? "" : "\n") tail
                }
                return found
            }
            /^    "path": /  { path = text($0) }
            /^    "block": / { block = text($0) }
            /^    "group": / { group = text($0) }
            /^    "unit": /  { unit = text($0) }
            /^    "access": / {
                n++; P[n] = path; B[n] = block; U[n] = unit; R[n] = text($0) == "r"
                G[n] = group == "" ? block : block "/" group
                pin[G[n]] += block == "GPIO" && group != ""
                if (!seen[path]++) parts(path)
                if (!seen[G[n]]++) parts(G[n])
                if (!seen[block]++ && block != G[n]) parts(block)
            }
            END {
                for (i = 1; i <= n; i++) {
                    if (want == "groups") {
                        if (!shown[B[i]]++) print B[i]
                        if (G[i] != B[i] && !shown[G[i]]++) print G[i]
                    }
                    if ((want == "settable" || want == "units") && R[i]) continue
                    short = unique(P[i])
                    # A pin is its level for get and set.
                    if (want != "groups" && U[i] == "H/L" && pin[G[i]] == 2 && unique(G[i]) != "")
                        short = unique(G[i]) "\n" short
                    if (want == "units") {
                        m = split(P[i] "\n" short, all, "\n")
                        for (k = 1; k <= m; k++) if (all[k] != "") print all[k] "\t" U[i]
                        continue
                    }
                    print P[i]
                    if (want != "groups" && short != "") { split(short, first, "\n"); if (first[1] != P[i]) print first[1] }
                }
            }'
}

# The words voractl takes for the settable item `name` (as typed), from
# its unit's row in voractl's own table (voractl --words).
_voractl_values() {
    local name=$1 path unit words
    [[ $name == [\"\']* ]] && name=${name:1} && name=${name%[\"\']}
    name=${name//\\ / }
    while IFS=$'\t' read -r path unit; do
        [[ $path == "$name" ]] || continue
        while read -r words; do
            [[ ${words%% *} == "$unit" ]] && printf '%s\n' ${words#* }
        done < <("${_voractl_line[0]}" --words 2>/dev/null)
        return
    done < <(_voractl_paths units)
}

# Reads what voractl --options says of each option of voractl (or, given a
# command, of the command) into the associative array named first: how it
# takes its value (flag, value, file, or words WORD..., with a leading "="
# when the value comes only after "="); _voractl_names gets their names in
# order.
_voractl_options() {
    local -n takes=$1
    local name how
    _voractl_names=()
    while read -r name how; do
        takes[$name]=$how
        _voractl_names+=("$name")
    done < <("${_voractl_line[0]}" --options "${@:2}" 2>/dev/null)
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
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} attached=
    local command= arguments= name what word
    local -a _voractl_names=() names=()
    local -A _voractl_global=() _voractl_takes=() commands=()
    _voractl_words
    # The commands, and what each takes as arguments, from voractl itself.
    while read -r name what; do
        commands[$name]=$what
        names+=("$name")
    done < <("${_voractl_line[0]}" --commands 2>/dev/null)
    for word in "${_voractl_line[@]:1}"; do
        if [[ -v commands[$word] ]]; then
            command=$word arguments=${commands[$word]}
            break
        fi
    done
    _voractl_options _voractl_global
    if [[ -n $command ]]; then
        _voractl_options _voractl_takes "$command"
    else
        _voractl_options _voractl_takes
    fi
    [[ $prev == = ]] && prev=${COMP_WORDS[COMP_CWORD - 2]} attached=1
    what=${_voractl_takes[$prev]-}
    case $what in
        file | =file)
            if [[ $what == file || -n $attached ]]; then
                compopt -o filenames 2>/dev/null
                COMPREPLY=($(compgen -f -- "$cur"))
                return
            fi ;;
        words* | =words*)
            if [[ $what == words* || -n $attached ]]; then
                COMPREPLY=($(compgen -W "${what#*words }" -- "$cur"))
                return
            fi ;;
        value) return ;;
    esac
    if [[ $cur == -* || (-n $command && -z $arguments) ]]; then
        COMPREPLY=($(compgen -W "${_voractl_names[*]}" -- "$cur"))
    elif [[ -z $command || $arguments == commands ]]; then
        COMPREPLY=($(compgen -W "${names[*]}" -- "$cur"))
    elif [[ $arguments == groups ]]; then
        _voractl_offer "$cur" < <(_voractl_paths groups)
    elif [[ $arguments == items ]]; then
        _voractl_offer "$cur" < <(_voractl_paths)
    elif [[ $arguments == settable && -n $attached && $prev != -* ]]; then
        # NAME=VALUE: bash hands over NAME, "=" and the value begun.
        _voractl_offer "$cur" < <(_voractl_values "$prev")
    elif [[ $arguments == settable && $cur != *=* ]]; then
        # NAME=VALUE: the names of items that can be set; ITEM VALUE: the
        # item only, the first word after the command and its options.
        local i after= previous=
        for ((i = 0; i < ${#_voractl_line[@]}; i++)); do
            word=${_voractl_line[i]}
            if [[ -z $after ]]; then
                [[ $word == "$command" ]] && after=1
            elif [[ ${_voractl_takes[$word]-} == @(value|file|words*) ]]; then
                ((i++))
            elif [[ $word != -* ]]; then
                previous=$word
            fi
        done
        if [[ -z $previous || $previous == *=* ]]; then
            _voractl_offer "$cur" < <(_voractl_paths settable)
        elif [[ $previous == "${_voractl_line[-1]}" ]]; then
            # ITEM VALUE: the words the item takes.
            _voractl_offer "$cur" < <(_voractl_values "$previous")
        fi
    fi
} &&
    complete -F _voractl voractl
