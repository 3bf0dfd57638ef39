#!/usr/bin/env bash
# clang-tidy over the sources that changed since the last commit that passed (recorded in
# build/tidy-passed), or since the given commit: tidy.sh [COMMIT | --all]
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."
source Tools/scripts/packages.sh

# Its own build folder: clang can't read the precompiled headers that gcc wrote.
folder=build/tidy
if [ ! -f $folder/build.ninja ]; then
    cmake -S . -B $folder -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_EXPORT_COMPILE_COMMANDS=ON -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON >/dev/null || exit 1
fi

base=${1:-}
[ -z "$base" ] && [ -f build/tidy-passed ] && base=$(cat build/tidy-passed)
if [ -z "$base" ] || [ "$base" = --all ] || ! git cat-file -e "$base" 2>/dev/null; then
    files=$(git ls-files 'BraltoKit/*.cpp' 'BraltoShared/*.cpp' 'DemoAgent/*.cpp' 'Sources/*.cpp' 'Tools/*.cpp')
else
    files=$(git diff --name-only --diff-filter=d "$base" -- '*.cpp' | grep -Ev '^(Tests|Benchmarks)/' || true)
fi
[ -z "$files" ] && { echo "nothing to check"; exit 0; }
# Findings go to standard output; xargs tells whether one of the runs failed.
if xargs -P "$(nproc)" -n 4 clang-tidy -p $folder --quiet <<<"$files" 2>/dev/null; then
    git rev-parse HEAD >build/tidy-passed
else
    exit 1
fi
