# bash completion for oam(1): the tool itself knows what can come next.
_oam() {
    local kind answers
    mapfile -t answers < <(command oam complete "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
    kind=${answers[0]-}
    COMPREPLY=("${answers[@]:1}")
    case $kind in
        files) compopt -o default -o filenames 2>/dev/null ;;
        nospace) compopt -o nospace 2>/dev/null ;;
    esac
    return 0
}
complete -F _oam oam
