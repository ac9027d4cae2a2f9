#!/bin/sh
# Runs the playback tests under the thread sanitizer: test-threads.sh [NAME] for those whose names match.
set -eu
cd "$(dirname "$0")/.."

scripts/bootstrap.sh test
cmake --preset tsan > /dev/null
cmake --build build/tsan
ctest --preset tsan -j 2 ${1:+-R "$1"}
