# Sourced by run.sh, test.sh and .ci/run: `install_packages` installs from packages.txt what is missing.

# The packages of packages.txt, one a line, without those whose command is there already.
wanted_packages() {
    local entry rest
    sed -e 's/#.*//' -e '/^[[:space:]]*$/d' packages.txt | while read -r entry rest; do
        case $entry in
        *"|"*) command -v "${entry#*|}" >/dev/null || echo "${entry%%|*}" ;;
        *) echo "$entry" ;;
        esac
    done
}

install_packages() {
    local wanted missing
    wanted=$(wanted_packages)
    # dpkg-query lists what it knows; whatever is not "installed" in its answer is missing.
    missing=$(comm -23 <(sort -u <<<"$wanted") \
        <(dpkg-query -W -f='${Package} ${db:Status-Status}\n' $wanted 2>/dev/null | awk '$2 == "installed" {print $1}' | sort -u))
    [ -z "$missing" ] && return 0
    echo "Installing: $(tr '\n' ' ' <<<"$missing")" >&2
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "These packages are missing, and there is no sudo to install them." >&2; return 1; }
        as_root=(sudo)
    fi
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update -q && \
           "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

# Installs what FOLDER/package-lock.json names, and no scripts of theirs run: into build/node, once
# for each state of that file.
install_node_packages() {
    local folder=$1 place
    place=build/node/$(basename "$folder")
    cmp -s "$folder/package-lock.json" "$place/installed-lock.json" && return 0
    mkdir -p "$place"
    cp "$folder/package.json" "$folder/package-lock.json" "$place/"
    local log
    log=$(mktemp)
    if (cd "$place" && npm ci --ignore-scripts --no-audit --no-fund) >"$log" 2>&1; then
        cp "$folder/package-lock.json" "$place/installed-lock.json"
        rm -f "$log"
        return 0
    fi
    cat "$log" >&2
    rm -f "$log"
    return 1
}

# Configures the preset once and builds the targets that are named after it, or everything.
build_preset() {
    local preset=$1
    shift
    if [ ! -f "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" >"$(mkdir -p "build/$preset" && echo "build/$preset")/configure.log" 2>&1 \
            || { cat "build/$preset/configure.log" >&2; return 1; }
    fi
    local targets=()
    [ $# -gt 0 ] && targets=(--target "$@")
    cmake --build "build/$preset" "${targets[@]}"
}
