#!/usr/bin/env bash
# clang-tidy over the sources that changed since the last commit that passed (recorded in
# build/tidy-passed), or since the given commit: tidy.sh [COMMIT | --all]
#
# Everything is read if there is no such record, and if the checks changed.
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."

# Its own build folder: clang can't read the precompiled headers that gcc wrote.
folder=build/tidy
if [ ! -f $folder/build.ninja ]; then
    cmake -S . -B $folder -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null || exit 1
fi

# Without the tests: they would take two fifths of the time, and what they have is small.
sources() { git ls-files '*.cpp' ':!Tests'; }

# A header is read with the source of its name, or else with the first one that includes it.
reader_of() {
    local source=${1%.h}.cpp
    [ -f "$source" ] || source=$(sources | xargs grep -lE "^#include \"(.*/)?$(basename "$1")\"" | head -n 1)
    [ -z "$source" ] || echo "$source"
}

changed_since() {
    sources | grep -Fxf <(
        git diff --name-only --diff-filter=d "$1" -- '*.cpp'
        git diff --name-only --diff-filter=d "$1" -- '*.h' | while read -r header; do reader_of "$header"; done
    )
}

base=${1:-}
[ -z "$base" ] && [ -f build/tidy-passed ] && base=$(cat build/tidy-passed)
if [ -z "$base" ] || [ "$base" = --all ] || ! git cat-file -e "$base" 2>/dev/null ||
    ! git diff --quiet "$base" -- .clang-tidy; then
    files=$(sources)
else
    files=$(changed_since "$base")
fi

# What passed since another commit says nothing about what came before that.
head=$(git rev-parse HEAD)
record() { [ -n "${1:-}" ] && [ "$1" != --all ] || echo "$head" >build/tidy-passed; }
[ -z "$files" ] && { record "$@"; echo "nothing to check"; exit 0; }

# Sources may be new since the folder was configured.
log=$(cmake --build $folder --target build.ninja 2>&1) || { echo "$log"; exit 1; }

# One file; all that clang says but the count of what it kept to itself. Whole answers are written, so
# that two of them don't mix.
check() {
    local answer status
    answer=$(clang-tidy -p "$1" --quiet "$3" 2>&1)
    status=$?
    answer=$(grep -vE '^[0-9]+ warnings?( and [0-9]+ errors?)? generated\.$' <<<"$answer")
    [ $status -eq 0 ] || { flock 9; echo "${answer:-clang-tidy fails on $3 without a word}"; } 9>>"$2"
    return $status
}
export -f check

# A finding in a header comes with each source that includes it, and is shown once.
lock=$(mktemp)
trap 'rm -f "$lock"' EXIT
if xargs -P "$(nproc)" -I {} bash -c 'check "$@"' check $folder "$lock" {} <<<"$files" |
    awk 'BEGIN { shown = 1 }
         /^[^ ].*:[0-9]+:[0-9]+: (warning|error): / { shown = !seen[$0]++ }
         /^(Error|clang-tidy)/ { shown = 1 }
         shown'; then
    record "$@"
else
    exit 1
fi
