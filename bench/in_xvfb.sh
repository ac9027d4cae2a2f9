#!/bin/sh
# Runs a command in an X server of its own, without a GPU or a window manager.
set -eu
folder=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1400x900x24 -nolisten tcp -noreset 3> "$folder/display" 2> /dev/null &
server=$!
trap 'kill $server; rm -rf "$folder"' EXIT
while [ ! -s "$folder/display" ]; do sleep 0.05; done
DISPLAY=:$(cat "$folder/display")
export DISPLAY
export QT_QPA_PLATFORM=xcb
"$@"
