#!/usr/bin/env bash
# Builds Bralto and starts it: run.sh [--screenshot FILE] [FOLDER]
#
#   FOLDER             the project to open; without one, the home screen
#   --screenshot FILE  write a picture of the window after its first frame, and end
#
# With no display, an X server without a screen is started, the picture is taken there, and its
# place is printed. Missing packages are installed first (as root, or through sudo).
set -euo pipefail
called_from=$PWD
cd "$(dirname "$(readlink -f "$0")")"
source Tools/scripts/packages.sh

usage() { sed -n '2,8s/^# \{0,1\}//p' "$0"; }

screenshot=
folder=
while [ $# -gt 0 ]; do
    case $1 in
        --help | -h) usage; exit 0 ;;
        --screenshot)
            [ $# -ge 2 ] || { echo "run.sh: --screenshot needs a file" >&2; exit 2; }
            screenshot=$(cd "$called_from" && realpath -m -- "$2"); shift ;;
        -*) echo "run.sh: unknown option $1" >&2; usage >&2; exit 2 ;;
        *)
            [ -z "$folder" ] || { echo "run.sh: one folder at a time" >&2; exit 2; }
            folder=$(cd "$called_from" && realpath -m -- "$1")
            [ -d "$folder" ] || { echo "run.sh: there is no folder $folder" >&2; exit 2; } ;;
    esac
    shift
done

install_packages
targets=(Bralto BraltoDesktop BraltoWeb BundledDemoAgent kovalt)
[ -d build/release/Bralto.app ] || echo "Building Bralto; the first time takes some minutes." >&2
if [ -t 1 ]; then
    build_preset release "${targets[@]}"
else
    log=$(mktemp)
    build_preset release "${targets[@]}" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    rm -f "$log"
fi

program=$PWD/build/release/Bralto.app/Contents/MacOS/Bralto
arguments=()
[ -n "$folder" ] && arguments=("$folder")

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && [ -z "$screenshot" ]; then
    exec "$program" "${arguments[@]}"
fi

# From here on the program is started for its picture.
screenshot=${screenshot:-$PWD/build/screenshot.png}
rm -f "$screenshot"
server=
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    number=$(mktemp)
    exec 3>"$number"
    Xvfb -displayfd 3 -screen 0 "${BRALTO_SCREEN:-1440x900x24}" -nolisten tcp >/dev/null 2>&1 &
    server=$!
    exec 3>&-
    for _ in $(seq 100); do [ -s "$number" ] && break; sleep 0.05; done
    [ -s "$number" ] || { echo "run.sh: Xvfb did not start" >&2; exit 1; }
    export DISPLAY=:$(tr -d '[:space:]' <"$number")
    export QT_QPA_PLATFORM=xcb
    rm -f "$number"
fi
BRALTO_SCREENSHOT=$screenshot "$program" "${arguments[@]}" &
application=$!
finish() {
    kill "$application" 2>/dev/null || true
    wait "$application" 2>/dev/null || true
    [ -n "$server" ] && kill "$server" 2>/dev/null || true
}
trap finish EXIT
for _ in $(seq 300); do
    [ -s "$screenshot" ] && break
    kill -0 "$application" 2>/dev/null || { echo "run.sh: the program ended before its first frame" >&2; exit 1; }
    sleep 0.1
done
[ -s "$screenshot" ] || { echo "run.sh: no frame within 30 seconds" >&2; exit 1; }
echo "Screenshot: $screenshot"
