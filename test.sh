#!/usr/bin/env bash
# Builds everything under the sanitizers and runs every test: test.sh [PATTERN]
#
#   PATTERN  only the test programs whose name matches this regular expression
#
# Headless, with a home folder, a runtime folder and a session bus of its own. The last line reads
# 'N passed, N failed'. Missing packages are installed first (as root, or through sudo).
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")"
source Tools/scripts/packages.sh

pattern=${1:-.}
preset=${BRALTO_PRESET:-dev}
# On a machine that others use as well (CI=true) a test program that fails is run once more; the log
# tells that it was.
install_packages || { echo "0 passed, 1 failed"; exit 1; }
# Without them the tests that need them fail, and say so.
install_node_packages Tests/Mcp
install_node_packages Tests/Scripts
build_preset "$preset" || { echo "0 passed, 1 failed"; exit 1; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/home" "$scratch/run"
chmod 700 "$scratch/run"
rm -rf "build/$preset/results"

env -u DISPLAY -u WAYLAND_DISPLAY -u DBUS_SESSION_BUS_ADDRESS \
    HOME="$scratch/home" XDG_RUNTIME_DIR="$scratch/run" XDG_CONFIG_HOME= XDG_DATA_HOME= XDG_CACHE_HOME="$scratch/cache" \
    QT_QPA_PLATFORM=offscreen QT_LOGGING_RULES="qt.qpa.*=false" \
    dbus-run-session -- ctest ${CI:+--repeat until-pass:2} --test-dir "build/$preset" --output-on-failure -j "$(nproc)" -R "$pattern" 2>&1 \
    | tee "build/$preset/ctest.log"

python3 Tools/scripts/count_tests.py "build/$preset"
