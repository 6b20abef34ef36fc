#!/usr/bin/env bash
# Times `gbrview render` on the generated large boards: the copper layer, the drill file and both
# together, at 600 and at 10 dpi (10 dpi is almost only reading). Prints, for each case, the median
# wall time and the median peak memory of a number of runs.
#   bench/render-timing.sh [runs, default 3] [folder of large.gbr and large.drl]
# The boards come from ../shared/tools/gen-big large (written to the folder when missing).
set -euo pipefail

top=$(cd "$(dirname "$0")/.." && pwd)
runs=${1:-3}
boards=${2:-${TMPDIR:-/tmp}/tvx-big}
gbrview=${GBRVIEW:-$top/build/bin/gbrview}
generator=$top/../shared/tools/gen-big
[ -x "$generator" ] || generator=/work/shared/tools/gen-big
if [ ! -f "$boards/large.gbr" ] || [ ! -f "$boards/large.drl" ]; then
  "$generator" large --out "$boards" >/dev/null
fi
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
window=0,0,600,450

median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

printf '%-8s %5s %10s %12s\n' case dpi "seconds" "peak MB"
for dpi in 600 10; do
  for case in layer drill both; do
    case "$case" in
      layer) files=("$boards/large.gbr") ;;
      drill) files=("$boards/large.drl") ;;
      both) files=("$boards/large.gbr" "$boards/large.drl") ;;
    esac
    : >"$out/times"
    for _ in $(seq "$runs"); do
      /usr/bin/time -f '%e %M' -o "$out/one" "$gbrview" render --mono --dpi "$dpi" \
        --window "$window" -o "$out/picture.png" "${files[@]}" >/dev/null
      cat "$out/one" >>"$out/times"
    done
    seconds=$(awk '{ print $1 }' "$out/times" | median)
    peak=$(awk '{ printf "%.0f\n", $2 / 1024 }' "$out/times" | median)
    printf '%-8s %5s %10s %12s\n' "$case" "$dpi" "$seconds" "$peak"
  done
done
