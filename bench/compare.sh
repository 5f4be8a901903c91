#!/usr/bin/env bash
# Prints, from one run, two tables of kaldo's speed figures.
# The first: a multiline of N points drawn by a script, the rubber-band step,
# a closed cross pass, DXF open and save beside ezdxf, peak memory, SVG
# export, and the first picture of mixed drawings (open only, PNG, SVG, the
# window's). Whole runs of the host are timed here (median of three); the
# rest comes from the benchmarks.
# The second: opening the drawings users open, mixed entities and
# multilines whose vertices all differ (bench/drawings/generate_drawing),
# kaldo beside a dxflib reader, ezdxf (on the smaller drawings: it needs
# minutes and gigabytes for the large ones) and cat as the floor. Whole
# processes: median time of the runs, their largest peak memory.
# "compare.sh files" prints the second table only.
#   KALDO_STAGE              the staged build (default build/default/stage)
#   KALDO_BENCH_MULTILINES   multilines in the DXF drawing (default 100000)
#   KALDO_EZDXF_MULTILINES   multilines in the drawing ezdxf reads (default 5000)
#   KALDO_BENCH_MIXED_ENTITIES  entity counts of the mixed drawings of the
#                            first table (lines, arcs, circles, polylines,
#                            texts, block references; default "100000 1000000")
#   KALDO_BENCH_MIXED        entity counts of the large mixed drawings
#                            (default "1000000 4000000"; empty for none)
#   KALDO_EZDXF_MIXED        entities of the mixed drawing ezdxf reads (default 50000)
#   KALDO_BENCH_RUNS         runs of each whole process in the second table (default 3)
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
# The benchmarks find the source tree here (bench/BenchPaths.h).
export KALDO_SOURCE_DIR=$root
stage=${KALDO_STAGE:-$root/build/default/stage}
kaldo=$stage/bin/kaldo
multilines=${KALDO_BENCH_MULTILINES:-100000}
ezdxfMultilines=${KALDO_EZDXF_MULTILINES:-5000}
mixedCounts=${KALDO_BENCH_MIXED-1000000 4000000}
ezdxfMixed=${KALDO_EZDXF_MIXED:-50000}
runs=${KALDO_BENCH_RUNS:-3}
pictureCounts=${KALDO_BENCH_MIXED_ENTITIES:-100000 1000000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Runs a command three times; prints its median wall seconds and its
# largest resident memory in MB (a million bytes, as the files are counted).
measure() {
    /usr/bin/python3 - "$@" <<'EOF'
import resource, statistics, subprocess, sys, time
times = []
for _ in range(3):
    start = time.perf_counter()
    subprocess.run(sys.argv[1:], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL, check=True)
    times.append(time.perf_counter() - start)
print(f"{statistics.median(times):.3f} {resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024 / 1e6:.0f}")
EOF
}

# Prints the named counter (or real_time in the benchmark's unit) of each
# benchmark of a JSON report whose name matches a pattern.
counter() {
    /usr/bin/python3 - "$1" "$2" "$3" <<'EOF'
import json, re, sys
report = json.load(open(sys.argv[1]))
for b in report["benchmarks"]:
    if re.search(sys.argv[2], b["name"]) and sys.argv[3] in b:
        print(b["name"], b[sys.argv[3]])
EOF
}

# A script drawing one multiline of N points in a zigzag.
mlineScript() {
    {
        echo MLINE
        for ((i = 0; i < $1; ++i)); do echo "$((i * 10)),$(((i % 2) * 7))"; done
        echo
    } >"$work/mline$1.scr"
}

: >"$work/empty.scr"

# Runs a command KALDO_BENCH_RUNS times under /usr/bin/time; prints its
# median wall seconds and its largest peak resident memory in MB (a million
# bytes, as the files are counted).
timed() {
    : >"$work/times"
    for ((run = 0; run < runs; ++run)); do
        /usr/bin/time -f "%e %M" -o "$work/time" "$@" </dev/null >/dev/null 2>&1
        cat "$work/time" >>"$work/times"
    done
    sort -n "$work/times" | awk '{ t[NR] = $1; if ($2 > peak) peak = $2 }
        END { printf "%.2f %.0f\n", t[int((NR + 1) / 2)], peak * 1024 / 1000000 }'
}

megabytesOf() { echo "$(stat -c %s "$1") / 1000000" | bc -l | xargs printf '%.1f'; }
# "S s (R MB/s), P MB (F× the file)" for S seconds and P MB of peak memory
# on a file of M MB.
figure() {
    printf '%s s (%.0f MB/s), %s MB (%.2f× the file)' "$1" "$(echo "$3 / ($1 + 0.005)" | bc -l)" "$2" \
        "$(echo "$2 / $3" | bc -l)"
}

# ezdxf reading and writing a drawing of MB megabytes: read time and rate,
# read and write time, peak memory.
ezdxfFigure() {
    /usr/bin/python3 "$root/bench/ezdxf_io.py" "$1" "$work/ezdxf-saved.dxf" >"$work/ezdxf.json"
    rm -f "$work/ezdxf-saved.dxf"
    /usr/bin/python3 - "$work/ezdxf.json" "$2" <<'EOF'
import json, sys
r = json.load(open(sys.argv[1])); mb = float(sys.argv[2])
print(f"read {r['read_seconds']:.2f} s ({mb / r['read_seconds']:.1f} MB/s), "
      f"read + write {r['read_seconds'] + r['write_seconds']:.2f} s, "
      f"{r['peak_mb']:.0f} MB ({r['peak_mb'] / mb:.1f}× the file)")
EOF
}

# One row per drawing of KIND with COUNT entities: kaldo opening it and
# opening and saving it, dxflib reading it, cat reading it; with EZDXF above
# 0, a second row for a drawing of that many, which ezdxf reads as well.
fileRow() {
    local kind=$1 count=$2 ezdxfCount=$3 file=$work/$1.dxf s p
    "$stage/bin/generate_drawing" "$kind" "$count" "$file"
    local mb open save dxflib="not built (libdxflib-dev missing)" ezdxf="–" floor
    mb=$(megabytesOf "$file")
    read -r s p < <(timed cat "$file"); floor="$s s"
    read -r s p < <(timed "$kaldo" --script "$work/empty.scr" "$file"); open=$(figure "$s" "$p" "$mb")
    read -r s p < <(timed "$kaldo" --script "$work/empty.scr" "$file" --save "$work/saved.dxf")
    save=$(figure "$s" "$p" "$mb")
    rm -f "$work/saved.dxf"
    if [ -x "$stage/bin/dxflib_read" ]; then
        read -r s p < <(timed "$stage/bin/dxflib_read" "$file"); dxflib=$(figure "$s" "$p" "$mb")
    fi
    [ "$ezdxfCount" = "$count" ] && ezdxf=$(ezdxfFigure "$file" "$mb")
    rm -f "$file"
    echo "| $kind, $count, $mb MB | $open | $save | $dxflib | $ezdxf | $floor |"
}

fileTable() {
    echo "| Drawing | kaldo open | kaldo open + save | dxflib (callbacks only) | ezdxf | cat |"
    echo "|---|---|---|---|---|---|"
    fileRow mixed "$ezdxfMixed" "$ezdxfMixed"
    for count in $mixedCounts; do fileRow mixed "$count" 0; done
    fileRow multilines "$ezdxfMultilines" "$ezdxfMultilines"
    fileRow multilines "$multilines" 0
}

if [ "${1:-}" = files ]; then
    fileTable
    exit 0
fi

read -r startSeconds _ < <(measure "$kaldo" --script "$work/empty.scr")
echo "| Work | Figure |"
echo "|---|---|"
echo "| Start and end of kaldo with an empty script | ${startSeconds} s |"
row="| One MLINE of N points from a script (whole run) |"
for n in 1000 2000 4000 8000; do
    mlineScript "$n"
    read -r seconds _ < <(measure "$kaldo" --script "$work/mline$n.scr")
    row+=" N=$n: ${seconds} s;"
done
echo "$row |"

"$stage/bin/bench_mline_geometry" --benchmark_filter=BM_RubberBandStep/ --benchmark_format=json \
    >"$work/rubber.json" 2>/dev/null
row="| Rubber-band step (bench_mline_geometry) |"
while read -r name ns; do row+=" ${name#BM_RubberBandStep/} vertices: $(printf '%.2f' "$(echo "$ns / 1000" | bc -l)") µs;"; done \
    < <(counter "$work/rubber.json" '^BM_RubberBandStep/[0-9]+$' real_time)
echo "$row |"

"$stage/bin/bench_mledit_cross" --benchmark_filter=BM_ClosedCrossPass --benchmark_format=json \
    >"$work/cross.json" 2>/dev/null
read -r _ ms < <(counter "$work/cross.json" BM_ClosedCrossPass real_time)
echo "| Closed cross pass, two 10 000-vertex multilines (bench_mledit_cross) | $(printf '%.2f' "$ms") ms |"

big=$work/big.dxf
KALDO_BENCH_DXF=$big KALDO_BENCH_MULTILINES=$multilines "$stage/bin/bench_dxf_io" \
    --benchmark_filter='BM_SaveDrawing/|BM_OpenDrawing/|BM_TearDownDrawing' --benchmark_format=json >"$work/dxf.json" 2>/dev/null
megabytes=$(counter "$work/dxf.json" '^BM_OpenDrawing/' MB | awk '{printf "%.0f", $2}')
openRate=$(counter "$work/dxf.json" '^BM_OpenDrawing/' MB/s | awk '{printf "%.0f", $2}')
saveRate=$(counter "$work/dxf.json" BM_SaveDrawing MB/s | awk '{printf "%.0f", $2}')
openPeak=$(counter "$work/dxf.json" '^BM_OpenDrawing/' peak_MB | awk '{printf "%.0f", $2}')
teardownMs=$(counter "$work/dxf.json" BM_TearDownDrawing ms | awk '{printf "%.0f", $2}')
openMs=$(counter "$work/dxf.json" '^BM_OpenDrawing/' ms | awk '{printf "%.0f", $2}')
read -r catSeconds _ < <(measure cat "$big")
read -r openSeconds openMemory < <(measure "$kaldo" --script "$work/empty.scr" "$big")
read -r saveSeconds _ < <(measure "$kaldo" --script "$work/empty.scr" "$big" --save "$work/saved.dxf")
read -r svgSeconds svgMemory < <(measure "$kaldo" --script "$work/empty.scr" "$big" --export "$work/big.svg")

KALDO_BENCH_MULTILINES=$ezdxfMultilines "$stage/bin/bench_dxf_io" --benchmark_format=json \
    >"$work/small.json" 2>/dev/null
smallOpen=$(counter "$work/small.json" '^BM_OpenDrawing/' MB/s | awk '{print $2}')
smallSave=$(counter "$work/small.json" BM_SaveDrawing MB/s | awk '{print $2}')
ezdxfOpen=$(counter "$work/small.json" BM_Ezdxf MB/s | awk '{print $2}')
ezdxfSave=$(counter "$work/small.json" BM_Ezdxf write_MB/s | awk '{print $2}')
ezdxfPeak=$(counter "$work/small.json" BM_Ezdxf peak_MB | awk '{printf "%.0f", $2}')
smallPeak=$(counter "$work/small.json" '^BM_OpenDrawing/' peak_MB | awk '{printf "%.0f", $2}')
smallMegabytes=$(counter "$work/small.json" '^BM_OpenDrawing/' MB | awk '{printf "%.1f", $2}')
ratio() { echo "$1 / $2" | bc -l | xargs printf '%.0f'; }

echo "| DXF open, ${megabytes} MB of ${multilines} multilines | ${openRate} MB/s in-process;" \
    "whole run ${openSeconds} s ($(ratio "$megabytes" "$openSeconds") MB/s); cat ${catSeconds} s;" \
    "on ${smallMegabytes} MB ${ezdxfMultilines} multilines $(printf '%.0f' "$smallOpen") MB/s," \
    "ezdxf $(printf '%.1f' "$ezdxfOpen") MB/s: $(ratio "$smallOpen" "$ezdxfOpen")× ezdxf |"
echo "| DXF save, same drawing | ${saveRate} MB/s in-process; whole run with open ${saveSeconds} s;" \
    "on ${smallMegabytes} MB $(printf '%.0f' "$smallSave") MB/s, ezdxf $(printf '%.1f' "$ezdxfSave") MB/s:" \
    "$(ratio "$smallSave" "$ezdxfSave")× ezdxf |"
echo "| Peak memory opening it | ${openPeak} MB in-process ($(echo "$openPeak / $megabytes" | bc -l | xargs printf '%.2f')× the file);" \
    "whole run ${openMemory} MB;" \
    "on ${smallMegabytes} MB ${smallPeak} MB, ezdxf ${ezdxfPeak} MB |"
echo "| Teardown of that drawing | object by object ${teardownMs} ms in-process (${openMs} ms to open it);" \
    "skipped at kaldo's exit: whole run ${openSeconds} s |"
echo "| SVG export of that drawing | whole run ${svgSeconds} s, ${svgMemory} MB" \
    "(+$(printf '%.2f' "$(echo "$svgSeconds - $openSeconds" | bc -l)") s," \
    "+$((svgMemory - openMemory)) MB over opening alone) |"

# Rows of the first picture of a mixed drawing of COUNT entities: open
# only, PNG and SVG export (whole runs), and the window's (bench_window).
pictureRows() {
    local mixed=$work/mixed.dxf megabytes
    "$stage/bin/generate_drawing" mixed "$1" "$mixed"
    megabytes=$(du -m "$mixed" | cut -f1)
    read -r openSeconds openMemory < <(measure "$kaldo" --script "$work/empty.scr" "$mixed")
    read -r pngSeconds pngMemory < <(measure "$kaldo" --script "$work/empty.scr" "$mixed" --export "$work/mixed.png")
    read -r svgSeconds svgMemory < <(measure "$kaldo" --script "$work/empty.scr" "$mixed" --export "$work/mixed.svg")
    KALDO_BENCH_MIXED_DXF=$mixed "$stage/bin/bench_window" --benchmark_filter=BM_Mixed \
        --benchmark_format=json >"$work/picture.json" 2>/dev/null
    rm -f "$mixed" "$work/mixed.png" "$work/mixed.svg"
    share() { echo "$1 / $megabytes" | bc -l | xargs printf '%.1f'; }
    value() { counter "$work/picture.json" "$1" "$2" | awk '{printf "%.0f", $2}'; }
    echo "| Mixed drawing of $1 entities, ${megabytes} MB: open only | whole run ${openSeconds} s," \
        "${openMemory} MB ($(share "$openMemory")× the file) |"
    echo "| Same drawing, \`--export\` PNG | whole run ${pngSeconds} s, ${pngMemory} MB ($(share "$pngMemory")× the file) |"
    echo "| Same drawing, \`--export\` SVG | whole run ${svgSeconds} s, ${svgMemory} MB ($(share "$svgMemory")× the file) |"
    echo "| Same drawing, the window's first picture (bench_window: the scene and its index, then a" \
        "1600 × 1000 picture) | scene and index $(value BM_MixedSceneAndIndex real_time) ms;" \
        "first frame $(value BM_MixedFirstPicture first_frame_ms) ms," \
        "complete $(value BM_MixedFirstPicture complete_ms) ms," \
        "peak $(value BM_MixedFirstPicture peak_MB) MB with the drawing open |"
    echo "| Same drawing in the window: a middle-button pan of a few pixels; a wheel step |" \
        "frame $(value 'BM_MixedPan/0/' frame_ms) ms, complete $(value 'BM_MixedPan/0/' complete_ms) ms;" \
        "frame $(value BM_MixedZoom frame_ms) ms, complete $(value BM_MixedZoom complete_ms) ms |"
}
for count in $pictureCounts; do pictureRows "$count"; done

echo
fileTable
