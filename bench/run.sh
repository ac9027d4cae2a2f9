#!/bin/sh
# Runs every benchmark, one after the other, and writes docs/PERFORMANCE.md. Don't use the machine meanwhile.
set -eu
cd "$(dirname "$0")/.."
scripts/bootstrap.sh bench
cmake --preset release > /dev/null
cmake --build --preset release
exec python3 bench/page.py build/release/bin docs/PERFORMANCE.md
