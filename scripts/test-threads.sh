#!/bin/sh
# Runs the tests of playback and recipes under the thread sanitizer: test-threads.sh [NAME] runs those whose names
# match.
set -eu
cd "$(dirname "$0")/.."

scripts/bootstrap.sh test
cmake --preset tsan > /dev/null
cmake --build build/tsan --target tests/playback/all
ctest --preset tsan -L playback ${1:+-R "$1"}
