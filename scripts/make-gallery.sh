#!/bin/sh
# Draws the gallery: every docs/gallery/NAME.scr runs in kaldo, which writes
# docs/gallery/NAME.png. The styles come from docs/gallery/gallery.mln,
# loaded by MLINE when a script asks for a style the drawing lacks.
#   scripts/make-gallery.sh [BUILD_DIR]    (default build/default)
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-build/default}
case $build in /*) ;; *) build=$root/$build ;; esac
kaldo=$build/stage/bin/kaldo
if [ ! -x "$kaldo" ]; then
    echo "make-gallery: no kaldo in $build/stage/bin; build first (make build)." >&2
    exit 2
fi

profile=$(mktemp)
log=$(mktemp)
trap 'rm -f "$profile" "$log"' EXIT

cd "$root/docs/gallery"
for script in *.scr; do
    name=${script%.scr}
    if ! "$kaldo" --profile "$profile" --script "$script" --export "$name.png" --size 1600 >"$log" 2>&1; then
        cat "$log" >&2
        echo "make-gallery: $script failed." >&2
        exit 1
    fi
    echo "docs/gallery/$name.png"
done
