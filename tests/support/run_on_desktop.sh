#!/bin/sh
# run_on_desktop.sh x11|wayland|seat PROGRAM: runs a test program on a desktop of its own: an X server with a window
# manager, a headless Wayland compositor, or one inside an X server, where xdotool moves its pointer. Exit code 77 if
# the desktop's programs are not installed.
set -eu
desktop=$1
shift
here=$(dirname "$0")
case $desktop in
    x11) needed="Xvfb openbox" ;;
    wayland) needed="weston" ;;
    seat) needed="Xvfb weston xdotool" ;;
esac
for program in $needed; do
    command -v "$program" >/dev/null || exit 77
done

state=$(mktemp -d "${TMPDIR:-/tmp}/ql240-desktop.XXXXXX")
chmod 700 "$state"
pids=
stop() {
    for pid in $pids; do
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    rm -rf "$state"
}
trap stop EXIT

# Waits for a condition, at most 10 seconds.
await() {
    for _ in $(seq 100); do
        if eval "$1"; then
            return 0
        fi
        sleep 0.1
    done
    echo "the $desktop desktop did not start" >&2
    exit 1
}

if [ "$desktop" != wayland ]; then
    Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp -noreset 3>"$state/display" >/dev/null 2>&1 &
    pids=$!
    await '[ -s "$state/display" ]'
    DISPLAY=:$(cat "$state/display")
    export QL240_TEST_DISPLAY="$DISPLAY"
fi
if [ "$desktop" = x11 ]; then
    DISPLAY=$DISPLAY openbox --startup "touch $state/managed" >/dev/null 2>&1 &
    pids="$! $pids"
    await '[ -e "$state/managed" ]'
    export QT_QPA_PLATFORM=xcb
else
    backend="headless-backend.so"
    [ "$desktop" = wayland ] || backend="x11-backend.so --use-pixman"
    # shellcheck disable=SC2086
    DISPLAY=${DISPLAY:-} XDG_RUNTIME_DIR=$state weston --backend=$backend --width=1280 --height=900 --idle-time=0 \
        --socket=wayland-ql240 >/dev/null 2>&1 &
    pids="$! $pids"
    await '[ -S "$state/wayland-ql240" ]'
    export QL240_TEST_WAYLAND_DISPLAY="$state/wayland-ql240" QT_QPA_PLATFORM=wayland
fi
# Desktop libraries (D-Bus, Wayland, input methods) keep memory to the end, and their plugins are unloaded before the
# leaks could be attributed to them. The same programs are checked for leaks without a desktop.
export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0"
"$here/run_test.sh" "$@"
