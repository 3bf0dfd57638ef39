#!/usr/bin/env bash
# Times how fast our terminal and others take a program's output, in one run on one display:
#
#     cmake --build --preset release --target bralto-terminal-window bralto-pty-drain
#     Tools/scripts/terminal-race.sh [MEGABYTES]        50 by default; about ten minutes
#
# Installs the others from Debian if they are missing: they belong to no build and no test. Each
# gets the same cells, the same font and the same history. The figure of a terminal is the median
# of three runs in megabytes a second, and its ratio to a reader that throws everything away.
set -u
cd "$(dirname "$0")/../.."

readonly size=${1:-50} runs=3 cols=120 rows=40 history=10000 patience=300
readonly font=Monospace points=10
readonly bin=$PWD/build/release/bin
readonly drain=$bin/bralto-pty-drain window=$bin/bralto-terminal-window
readonly kinds=(plain colour cjk)
readonly terminals=(bralto xterm urxvt lxterminal kitty alacritty)

[ -x "$drain" ] && [ -x "$window" ] || { echo "Build bralto-terminal-window and bralto-pty-drain first." >&2; exit 1; }

install_peers() {
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    local missing=() package
    for package in xterm rxvt-unicode lxterminal kitty alacritty libgl1-mesa-dri xvfb openbox dbus; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "Installing: ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq
    for package in "${missing[@]}"; do
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$package" >/dev/null \
            || echo "$package could not be installed." >&2
    done
}

folder=$(mktemp -d)
started=()
finish() {
    local pid
    for pid in "${started[@]}"; do kill "$pid" 2>/dev/null; done
    rm -rf "$folder"
}
trap finish EXIT

# A display, a window manager and a bus of our own, and a home without anybody's settings.
start_display() {
    Xvfb -displayfd 3 -screen 0 1920x1200x24 -nolisten tcp 3>"$folder/display" >/dev/null 2>&1 &
    started+=($!)
    local i
    for i in $(seq 100); do [ -s "$folder/display" ] && break; sleep 0.1; done
    [ -s "$folder/display" ] || { echo "Xvfb does not start." >&2; exit 1; }
    export DISPLAY=:$(cat "$folder/display") QT_QPA_PLATFORM=xcb LIBGL_ALWAYS_SOFTWARE=1
    export HOME=$folder/home XDG_RUNTIME_DIR=$folder/run
    mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME WAYLAND_DISPLAY
    dbus-daemon --session --nofork --nopidfile --address="unix:path=$folder/bus" >/dev/null 2>&1 &
    started+=($!)
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$folder/bus
    openbox >/dev/null 2>&1 &
    started+=($!)
    mkdir -p "$HOME/.config/lxterminal"
    printf '[general]\nfontname=%s %s\nscrollback=%s\n' $font $points $history >"$HOME/.config/lxterminal/lxterminal.conf"
    sleep 1
}

# start NAME COMMAND...: the command of that terminal, in the foreground.
start() {
    local name=$1
    shift
    case $name in
    bralto) "$window" --grid ${cols}x$rows run "$*" >>"$folder/bralto.json" ;;
    xterm) xterm -fa $font -fs $points -geometry ${cols}x$rows -sl $history -e "$@" ;;
    urxvt) urxvt -fn "xft:$font:size=$points" -geometry ${cols}x$rows -sl $history -e "$@" ;;
    lxterminal) lxterminal --no-remote --geometry=${cols}x$rows -e "$*" ;;
    kitty) kitty -o font_family=$font -o font_size=$points -o remember_window_size=no -o initial_window_width=${cols}c \
        -o initial_window_height=${rows}c -o scrollback_lines=$history "$@" ;;
    alacritty) alacritty -o "window.dimensions.columns=$cols" -o "window.dimensions.lines=$rows" -o "font.size=$points" \
        -o "scrolling.history=$history" -e "$@" ;;
    esac
}

# once NAME KIND: appends a line to $folder/NAME.KIND, if all goes well.
once() {
    local result=$folder/$1.$2 log=$folder/$1.log
    if [ "$1" = bare ]; then
        "$drain" bare ${cols}x$rows "$folder/$2" "$result"
        return
    fi
    start "$1" "$drain" drain ${cols}x$rows "$folder/$2" "$result" >"$log" 2>&1 &
    local pid=$! before=$SECONDS
    while kill -0 $pid 2>/dev/null && [ $((SECONDS - before)) -lt $patience ]; do sleep 0.1; done
    kill $pid 2>/dev/null
    wait $pid 2>/dev/null
}

median() { sort -n "$1" | awk '{ v[NR] = $1 } END { if (NR) printf "%.1f", v[int((NR + 1) / 2)] }'; }

install_peers
start_display
for kind in "${kinds[@]}"; do "$drain" make "$kind" "$size" "$folder/$kind"; done

# In turn, so that whatever else the machine does hits all alike.
for run in $(seq $runs); do
    for kind in "${kinds[@]}"; do
        for name in bare "${terminals[@]}"; do
            echo "run $run of $runs: $kind in $name" >&2
            once "$name" "$kind"
        done
    done
done

echo "$size MB each, ${cols} by $rows, megabytes a second (times the bare reader); load $(cut -d' ' -f1-3 /proc/loadavg)"
printf '%-12s' terminal
printf '%18s' "${kinds[@]}"
echo
for name in bare "${terminals[@]}"; do
    printf '%-12s' "$name"
    for kind in "${kinds[@]}"; do
        if [ -s "$folder/$name.$kind" ]; then
            own=$(median "$folder/$name.$kind")
            printf '%18s' "$own ($(awk -v a="$own" -v b="$(median "$folder/bare.$kind")" 'BEGIN { printf "%.2f", a / b }'))"
        else
            printf '%18s' "no figure"
        fi
    done
    echo
done
for name in "${terminals[@]}"; do
    for kind in "${kinds[@]}"; do
        if [ ! -s "$folder/$name.$kind" ]; then
            echo "$name gave no figure for $kind: $(tail -n 2 "$folder/$name.log" 2>/dev/null | tr '\n' ' ')"
        elif awk -v c=$cols -v r=$rows '$2 != c || $3 != r { wrong = 1 } END { exit !wrong }' "$folder/$name.$kind"; then
            echo "$name had another grid: $(awk '{ print $2 "x" $3 }' "$folder/$name.$kind" | sort -u | tr '\n' ' ')"
        fi
    done
done
echo "Meanwhile in ours, a click waited for the interface thread, in milliseconds:"
sed -E 's/.*"clickLongest":([0-9.]+).*"clickP99":([0-9.]+).*/longest \1, 99th percentile \2/' "$folder/bralto.json"
