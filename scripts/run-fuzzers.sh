#!/usr/bin/env bash
# Runs every built fuzz target for a bounded time on its seed corpus.
# Usage: run-fuzzers.sh BUILD_DIR SECONDS_PER_TARGET
set -euo pipefail
build_dir="$(cd "$1" && pwd)"
seconds=$2
root="$(cd "$(dirname "$0")/.." && pwd)"
# Font configuration keeps caches for the life of the process (the renderer
# lays out text): not a leak of ours.
export LSAN_OPTIONS="suppressions=$root/tests/lsan-suppressions.txt${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
shopt -s nullglob
targets=("$build_dir"/stage/bin/fuzz_*)
if [ ${#targets[@]} -eq 0 ]; then
    echo "No fuzz targets built."
    exit 0
fi
for target in "${targets[@]}"; do
    name=$(basename "$target")
    seeds="$root/fuzz/corpus/$name"
    work="$build_dir/corpus/$name"
    mkdir -p "$work"
    echo "== $name for ${seconds}s"
    args=("$work")
    [ -d "$seeds" ] && args+=("$seeds")
    dict="$root/fuzz/$name.dict"
    extra=()
    [ -f "$dict" ] && extra+=("-dict=$dict")
    (cd "$build_dir" && "$target" -max_total_time="$seconds" -rss_limit_mb=4096 \
        -print_final_stats=1 "${extra[@]}" "${args[@]}")
done
