#!/bin/sh
# Sets everything up as needed and starts the viewer, or with an argument ("./run.sh settings") the settings tool.
set -eu
cd "$(dirname "$0")"

scripts/bootstrap.sh run
[ -f build/release/build.ninja ] || cmake --preset release > /dev/null
cmake --build --preset release --target ql240-viewer ql240-clip ql240-demo-card

# The card is made once; the folder dialog opens on it until another folder is chosen.
card="${XDG_DATA_HOME:-$HOME/.local/share}/QL240/demo-card"
[ -d "$card" ] || build/release/bin/ql240-demo-card "$card"
build/release/bin/ql240-demo-card --offer "$card"

exec build/release/bin/ql240-viewer "$@"
