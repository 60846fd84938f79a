#!/bin/bash
# Draws requests a second over threads, of what bench/sdk-bench.sh printed: the library, bare handles, and wrk as the server's limit.
#   throughput-plot.sh FIGURES >docs/pictures/throughput.svg
set -euo pipefail
FIGURES=${1:?what the benchmarks printed}
rows=$(mktemp)
trap 'rm -f "$rows"' EXIT
awk -F '\t' '$1 == "#throughput" { ours[$2] = $3; bare[$2] = $4 } $1 == "#limit" { limit[$2] = $3 }
    END { for (n in ours) print n, ours[n] / 1000, bare[n] / 1000, limit[n] / 1000 }' "$FIGURES" | sort -n >"$rows"
[[ -s $rows ]] || { echo "throughput-plot.sh: $FIGURES has no line #throughput" >&2; exit 1; }
gnuplot -e "rows='$rows'" - <<'END'
set terminal svg size 640,370 font "sans-serif,12" background rgb "white"
set key right bottom
set xlabel "threads"
set ylabel "1,000 requests/s"
set logscale x 2
set xrange [0.9:18]
set xtics (1, 2, 4, 8, 16)
set yrange [0:*]
set grid ytics linecolor rgb "#dddddd"
plot rows using 1:4 with linespoints pointtype 7 linecolor rgb "#999999" title "wrk: the limit of the server", \
     rows using 1:3 with linespoints pointtype 7 linecolor rgb "#b5541c" title "bare libcurl and JsonCpp, a handle each", \
     rows using 1:2 with linespoints pointtype 7 linecolor rgb "#1f5fa8" title "getLun, one device manager"
END
