# Sourced: `project_files PATTERN…` lists our own files, also where the tree came without its history.

project_files() {
    if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files --cached --others --exclude-standard -- "$@"
        return
    fi
    local names=()
    for pattern in "$@"; do names+=(-o -name "$pattern"); done
    find . \( -name build -o -name .git \) -prune -o -type f \( "${names[@]:1}" \) -printf '%P\n' | sort
}
