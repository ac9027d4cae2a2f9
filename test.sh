#!/bin/sh
# Sets everything up where needed and runs every test; needs no display. "./test.sh NAME" runs the tests whose names
# match.
set -eu
cd "$(dirname "$0")"

scripts/bootstrap.sh test
cmake --preset dev > /dev/null
cmake --build --preset dev
ctest --preset dev -j 2 ${1:+-R "$1"}
