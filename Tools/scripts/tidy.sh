#!/usr/bin/env bash
# clang-tidy over the sources that changed since they were last read without a finding: tidy.sh [--all]
#
# Tools/tidy-passed holds the checksums of what was, and is written anew when a run finds nothing;
# commit it with the change. All sources are read if the checks changed, or with --all.
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."
source Tools/scripts/files.sh

record=Tools/tidy-passed

# Without the tests: they would take two fifths of the time, and what they have is small.
sources() { project_files '*.cpp' | grep -v ^Tests/; }
# The checks first: with others, nothing has passed.
checksums() {
    { echo .clang-tidy; project_files '*.cpp' '*.h' | grep -v ^Tests/; } | xargs sha256sum
}

# A header is read with the source of its name, or else with the first one that includes it.
reader_of() {
    local source=${1%.h}.cpp
    [ -f "$source" ] || source=$(sources | xargs grep -lE "^#include \"(.*/)?$(basename "$1")\"" | head -n 1)
    [ -z "$source" ] || echo "$source"
}

# What the record doesn't hold as it is now.
changed() {
    checksums | grep -vxFf "$record" | awk '{ print $2 }' | while read -r file; do
        case $file in
            *.h) reader_of "$file" ;;
            *) echo "$file" ;;
        esac
    done | sort -u
}

if [ "${1:-}" = --all ] || [ ! -s $record ] || ! grep -qxF "$(sha256sum .clang-tidy)" $record; then
    files=$(sources)
else
    files=$(changed)
fi
[ -z "$files" ] && { echo "nothing to check"; checksums >$record; exit 0; }

# Its own build folder: clang can't read the precompiled headers that gcc wrote.
folder=build/tidy
if [ ! -f $folder/build.ninja ]; then
    cmake -S . -B $folder -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null || exit 1
fi
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
echo "Reading $(wc -l <<<"$files") sources"
lock=$(mktemp)
trap 'rm -f "$lock"' EXIT
if xargs -P "$(nproc)" -I {} bash -c 'check "$@"' check $folder "$lock" {} <<<"$files" |
    awk 'BEGIN { shown = 1 }
         /^[^ ].*:[0-9]+:[0-9]+: (warning|error): / { shown = !seen[$0]++ }
         /^(Error|clang-tidy)/ { shown = 1 }
         shown'; then
    checksums >$record
else
    exit 1
fi
