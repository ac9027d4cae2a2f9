#!/bin/sh
# Sets everything up as needed and runs every test, then all except the map's again under the address and undefined
# behaviour sanitizers. Needs no display. "./test.sh NAME" runs the tests whose names match.
set -eu
cd "$(dirname "$0")"

scripts/bootstrap.sh test
scripts/check-format
cmake --preset dev > /dev/null
scripts/check-tidy build/dev
for preset in dev asan; do
    cmake --preset "$preset" > /dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" -j 2 ${1:+-R "$1"}
done
