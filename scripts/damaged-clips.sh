#!/bin/sh
# Opens, plays, seeks, steps and closes damaged clips, all in one process: damaged-clips.sh [COUNT [PRESET]], by
# default 3000 with the dev preset. Writes the figures to docs/damaged-clips.md; with the asan preset only prints
# them. With "commands" as the third argument, ql240-clip's info, cut and repair run on the same clips instead, and the
# figures are only printed; clips on which one fails are kept in build/PRESET/failed-*.
set -eu
cd "$(dirname "$0")/.."

count=${1:-3000}
preset=${2:-dev}

scripts/bootstrap.sh run
cmake --preset "$preset" > /dev/null
cmake --build "build/$preset" --target damaged_clips

if [ "${3:-}" = commands ]; then
    cd "build/$preset"
    exec ../../tests/support/run_test.sh tests/damaged_clips commands "$PWD/bin/ql240-clip" "$count"
fi

table=$(mktemp)
trap 'rm -f "$table"' EXIT
cd "build/$preset"
../../tests/support/run_test.sh tests/damaged_clips "$count" > "$table" || { cat "$table"; exit 1; }
cd ../..
cat "$table"
[ "$preset" = dev ] || exit 0
page=docs/damaged-clips.md
text=$(sed '/^| Clip /,$d' "$page")
{ printf '%s\n\n' "$text"; cat "$table"; } > "$page"
