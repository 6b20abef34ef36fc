#!/usr/bin/env bash
# The longest pause of the viewer's window while it imports the generated large copper layer, and
# while it redraws it (Home: the whole board; a wheel step in), under a virtual X display: the host
# is started with TVX_MEASURE_PAUSES and read with its query PAUSE (app/PauseMeter.h).
#   bench/pause-timing.sh [runs, default 3] [folder of large.gbr]
# Prints, for each case, the median of the runs in milliseconds. Needs Xvfb and xdotool.
set -euo pipefail

top=$(cd "$(dirname "$0")/.." && pwd)
runs=${1:-3}
boards=${2:-${TMPDIR:-/tmp}/tvx-big}
host=${HOST_BINARY:-$top/build/bin/tarvex-gbrviewer}
generator=$top/../shared/tools/gen-big
[ -x "$generator" ] || generator=/work/shared/tools/gen-big
[ -f "$boards/large.gbr" ] || "$generator" large --out "$boards" >/dev/null

work=$(mktemp -d)
# Xvfb picks a free display itself and writes its number.
Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; rm -rf "$work"' EXIT
for _ in $(seq 100); do [ -s "$work/display" ] && break; sleep 0.1; done
export DISPLAY=:$(head -1 "$work/display")

median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

ask() { # query, answer prefix: prints the value of the answer to this query
  local from
  from=$(wc -l <"$work/out")
  echo "TARVEX,$1" >"$work/in"
  for _ in $(seq 600); do
    if tail -n +"$((from + 1))" "$work/out" | grep -q "$2"; then
      tail -n +"$((from + 1))" "$work/out" | grep "$2" | tail -1 | sed "s/.*$2//"
      return
    fi
    sleep 0.1
  done
}

: >"$work/import" ; : >"$work/home" ; : >"$work/wheel"
for _ in $(seq "$runs"); do
  rm -f "$work/in" "$work/out"
  mkfifo "$work/in"
  sleep 100000 >"$work/in" &
  holder=$!
  XDG_CONFIG_HOME=$work/config XDG_CACHE_HOME=$work/cache TVX_MEASURE_PAUSES=1 \
    "$host" --layer 3 "$boards/large.gbr" <"$work/in" >"$work/out" 2>/dev/null &
  viewer=$!
  # The import is over when the message line tells its outcome.
  for _ in $(seq 600); do
    line=$(ask MSGLINE "MSGLINE	")
    case "$line" in *successful* | *Successful*) break ;; esac
  done
  ask PAUSE "PAUSE," >>"$work/import"
  window=$(xdotool search --name "Viewer & Import" | head -1)
  xdotool windowfocus --sync "$window" mousemove 800 500
  sleep 1
  ask PAUSE "PAUSE," >/dev/null
  xdotool key Home
  sleep 2
  ask PAUSE "PAUSE," >>"$work/home"
  xdotool click 4
  sleep 2
  ask PAUSE "PAUSE," >>"$work/wheel"
  echo "All,EX" >"$work/in"
  wait $viewer || true
  kill $holder 2>/dev/null || true
done
printf '%-8s %12s\n' case "longest ms"
for case in import home wheel; do
  printf '%-8s %12s\n' "$case" "$(median <"$work/$case")"
done
