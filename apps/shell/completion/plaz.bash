# Completion of plaz for bash.

_plaz() {
    local line=${COMP_LINE:0:COMP_POINT} words current candidate value
    # Words as bash has them are split at ":" and "=" too. A backslash holds a space here, as on the command line.
    # shellcheck disable=SC2162
    read -a words <<<"$line"
    [[ $line != *[[:space:]] ]] || words+=("")
    current=${words[-1]}
    COMPREPLY=()
    while IFS= read -r candidate; do
        case $candidate in
        '') continue ;;
        :files) compopt -o default; return ;;
        :directories) compopt -o dirnames; return ;;
        esac
        printf -v value '%q' "${candidate%%$'\t'*}"
        # bash replaces no more than what stands behind the last of these.
        [[ $current != *[:=]* ]] || value=${value#"${current%"${current##*[:=]}"}"}
        COMPREPLY+=("$value")
    done < <("${words[0]/#\~/$HOME}" complete "${words[@]}" 2>/dev/null)
    compopt -o nosort
    [[ ${#COMPREPLY[@]} != 1 || ${COMPREPLY[0]} != *= ]] || compopt -o nospace
}

complete -F _plaz plaz
