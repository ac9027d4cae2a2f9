#!/bin/sh
# Runs one test program with fixed locale, time zone, platform and home folders, so that neither the machine's
# settings nor another test affect its result.
set -eu
home=$(mktemp -d "${TMPDIR:-/tmp}/ql240-test.XXXXXX")
trap 'rm -rf "$home"' EXIT
mkdir -p -m 700 "$home/config" "$home/cache" "$home/data" "$home/runtime"
export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_CACHE_HOME="$home/cache"
export XDG_DATA_HOME="$home/data" XDG_RUNTIME_DIR="$home/runtime"
# Or else each process that may play sound would leave a folder in /tmp.
export PULSE_RUNTIME_PATH="$home/runtime/pulse"
export LC_ALL=C.UTF-8 TZ=UTC QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
export QT_SCALE_FACTOR="${QT_SCALE_FACTOR:-1}" QT_FONT_DPI=96
# Creating GStreamer's plugin registry takes half a second: all tests of a build share one.
export GST_REGISTRY="$(dirname "$1")/gst-registry.bin"
unset DBUS_SESSION_BUS_ADDRESS DISPLAY WAYLAND_DISPLAY || true
# Only a desktop started for the test (run_on_desktop.sh) is used.
[ -z "${QL240_TEST_DISPLAY:-}" ] || export DISPLAY="$QL240_TEST_DISPLAY"
[ -z "${QL240_TEST_WAYLAND_DISPLAY:-}" ] || export WAYLAND_DISPLAY="$QL240_TEST_WAYLAND_DISPLAY"
if [ -n "${ASAN_OPTIONS:-}" ]; then
    # QtTest's watchdog thread ends beside the leak check, which can crash over it or take the thread's one block for
    # lost. Neither says anything about the test: then once more. What the test itself leaks is lost again.
    { "$@" 2>&1 && echo 0 > "$home/status" || echo $? > "$home/status"; } | tee "$home/output"
    grep -qaE 'LeakSanitizer has encountered a fatal error|leaked in 1 allocation' "$home/output" ||
        exit "$(cat "$home/status")"
fi
"$@"
