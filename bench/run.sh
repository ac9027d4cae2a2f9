#!/bin/sh
# Runs every benchmark, one after the other, and prints a table: what, here, peer, ratio, what is asked, whether it is
# met. Leave the machine alone meanwhile.
set -eu
cd "$(dirname "$0")/.."
scripts/bootstrap.sh bench
cmake --preset release > /dev/null
cmake --build --preset release
bin=build/release/bin

echo "$(nproc) × $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1), $(mpv --version | head -n 1 | cut -d' ' -f1,2)"
echo "| what | here | peer | ratio | asked | met |"
echo "| --- | --- | --- | --- | --- | --- |"
"$bin/bench_adjust"
bench/in_xvfb.sh python3 bench/playback.py "$bin/ql240-bench-player" | tail -n +3
for bench in bench_library bench_panel bench_map bench_settings bench_sensor_clip; do
    [ ! -x "$bin/$bench" ] || { echo; echo "$bench"; bench/in_xvfb.sh "$bin/$bench"; }
done
echo
bench/in_xvfb.sh python3 bench/start_up.py "$bin/ql240-viewer" "$bin/ql240-bench-empty-window"
# The hour of play is for whoever has one: the same without "1080p".
bench/in_xvfb.sh python3 bench/hour.py "$bin/ql240-viewer" 1080p
