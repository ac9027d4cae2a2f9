#!/bin/sh
# Plays random runs on the viewer's windows and reports those that found a fault, reduced to a few steps:
#
#   scripts/moments.sh [COUNT] [--preset dev|asan|tsan] [--pipeline] [--from SEED]
#
# Runs over fakes with a virtual clock; with --pipeline, over real clips in real time.
set -eu
cd "$(dirname "$0")/.."

preset=dev
count=1000
pipeline=
from=1
while [ $# -gt 0 ]; do
    case $1 in
        --preset) preset=$2; shift ;;
        --pipeline) pipeline=--pipeline ;;
        --from) from=$2; shift ;;
        *[!0-9]*) sed -n '2,/^set -eu/{/^set -eu/d;s/^# \{0,1\}//;p}' "$0" >&2; exit 2 ;;
        *) count=$1 ;;
    esac
    shift
done

scripts/bootstrap.sh test
cmake --preset "$preset" > /dev/null
cmake --build "build/$preset" --target random_moments
# As in the presets' tests.
[ "$preset" != tsan ] || export TSAN_OPTIONS=die_after_fork=0:ignore_noninstrumented_modules=1 G_SLICE=always-malloc
exec tests/support/run_test.sh "build/$preset/tests/random_moments" $pipeline --seeds "$count" --from "$from"
