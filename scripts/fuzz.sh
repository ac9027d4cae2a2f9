#!/bin/sh
# Runs the fuzz targets, built with clang-14: fuzz.sh [SECONDS [TARGET…]], by default every target for 600 seconds,
# QL240_FUZZ_JOBS (1) at a time. Prints how many inputs each has tried. Failing inputs, and all inputs that reach new
# code, are kept in build/fuzz/found/<target>; the corpus in the tree is only read. Leaks are checked by the replaying
# tests instead: a check after every input would take most of the time, because Qt keeps some memory.
set -eu
cd "$(dirname "$0")/.."

if [ "${1:-}" = --one ]; then
    seconds=$2 target=$3 found=build/fuzz/found/$3
    mkdir -p "$found"
    if build/fuzz/tests/"$target" -max_total_time="$seconds" -timeout=25 -detect_leaks=0 -rss_limit_mb=1024 -max_len=65536 \
        -print_final_stats=1 -artifact_prefix="$found/failure-" "$found" "tests/fuzz/corpus/$target" \
        > "$found.log" 2>&1; then
        awk -v name="$target" '/number_of_executed_units/ { print name ": " $2 " inputs, nothing found" }' "$found.log"
        exit 0
    fi
    echo "$target FAILED, see $found.log"
    exit 1
fi

seconds=${1:-600}
[ $# -eq 0 ] || shift
# shellcheck disable=SC2046 – one word per target
[ $# -gt 0 ] || set -- $(basename -s .cpp -a tests/fuzz/fuzz_*.cpp)

scripts/bootstrap.sh run fuzz
cmake --preset fuzz > /dev/null
cmake --build build/fuzz --target "$@"
printf '%s\n' "$@" | xargs -n 1 -P "${QL240_FUZZ_JOBS:-1}" scripts/fuzz.sh --one "$seconds"
