#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in a build directory of their own and runs each for a
# number of seconds, seeded with the shared corpus.
#   fuzz/run.sh [seconds per target, default 60] [build directory, default build-fuzz]
# Needs clang++ and its runtime (Debian: clang, libclang-rt-14-dev). Exits non-zero when a target
# finds a crash, a hang or a leak; the input that did it is left in the build directory.
set -euo pipefail

seconds=${1:-60}
top=$(cd "$(dirname "$0")/.." && pwd)
build=${2:-$top/build-fuzz}
corpus=${TVX_CORPUS_DIR:-$top/../shared/corpus}
jobs=${JOBS:-2}

flags="-g -O1 -fno-omit-frame-pointer -fsanitize=address,undefined -fno-sanitize-recover=undefined -fsanitize=fuzzer-no-link"
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS="$flags" \
  -DTVX_BUILD_FUZZERS=ON -DTVX_BUILD_TESTS=OFF -DTVX_BUILD_BENCHMARKS=OFF >/dev/null

targets=(fuzz_gerber_pass fuzz_macro_expansion fuzz_import)
cmake --build "$build" -j "$jobs" --target "${targets[@]}"

# Seeds: the Gerber files of the corpus for the pass; for the macro target, the modifiers and the
# lines of every macro found in them; for the whole import every file of the corpus behind a byte
# that chooses the kind: 0 for recognition, and Gerber read for the drill layer (10), Excellon read
# as Format One (8).
seeds="$build/seeds"
rm -rf "$seeds"
mkdir -p "$seeds/fuzz_gerber_pass" "$seeds/fuzz_macro_expansion" "$seeds/fuzz_import"
if [ -f "$corpus/MANIFEST.tsv" ]; then
  awk -F'\t' 'NR > 1 && $2 ~ /^gerber/ { print $1 }' "$corpus/MANIFEST.tsv" | while read -r file; do
    cp "$corpus/$file" "$seeds/fuzz_gerber_pass/$(echo "$file" | tr '/' '_')"
  done
  awk -F'\t' 'NR > 1 { print $1 "\t" $2 }' "$corpus/MANIFEST.tsv" | while IFS=$'\t' read -r file kind; do
    name=$(echo "$file" | tr '/' '_')
    { printf '\000'; cat "$corpus/$file"; } > "$seeds/fuzz_import/$name"
    case "$kind" in
      gerber*) { printf '\012'; cat "$corpus/$file"; } > "$seeds/fuzz_import/$name.drill" ;;
      excellon) { printf '\010'; cat "$corpus/$file"; } > "$seeds/fuzz_import/$name.one" ;;
    esac
  done
  n=0
  for file in "$seeds"/fuzz_gerber_pass/*; do
    # Each %AM...% block becomes one seed: "0.5X0.25", a line break, then its lines.
    awk 'BEGIN { RS = "%" } /^[ \r\n]*AM/ { gsub(/[\r\n]/, ""); sub(/^AM[^*]*\*/, ""); print }' "$file" |
      while read -r lines; do
        n=$((n + 1))
        printf '0.5X0.25X0.1\n%s' "$lines" > "$seeds/fuzz_macro_expansion/$(basename "$file").$n"
      done
  done
else
  echo "no corpus at $corpus: the targets start without seeds" >&2
  printf '%%ADD10C,0.01*%%D10*X0Y0D03*M02*' > "$seeds/fuzz_gerber_pass/minimal"
  { printf '\000'; cat "$seeds/fuzz_gerber_pass/minimal"; } > "$seeds/fuzz_import/minimal"
  printf '0.5\n1,1,$1,0,0*' > "$seeds/fuzz_macro_expansion/minimal"
fi

status=0
for target in "${targets[@]}"; do
  work="$build/$target.work"
  mkdir -p "$work"
  echo "== $target for ${seconds}s"
  # A whole import may rightly repeat a small file's elements ten thousand times (step and
  # repeat), so its inputs are kept shorter and given more time.
  maxlen=65536 timeout=10
  if [ "$target" = fuzz_import ]; then maxlen=4096 timeout=30; fi
  if ! (cd "$work" && "$build/bin/$target" -max_total_time="$seconds" -timeout=$timeout \
        -rss_limit_mb=2048 -malloc_limit_mb=1024 -max_len=$maxlen -print_final_stats=1 \
        "$work" "$seeds/$target" 2>&1 | tail -n 25); then
    status=1
  fi
  if ls "$work"/crash-* "$work"/timeout-* "$work"/leak-* "$work"/oom-* >/dev/null 2>&1; then
    echo "$target found failing inputs:" >&2
    ls "$work"/crash-* "$work"/timeout-* "$work"/leak-* "$work"/oom-* 2>/dev/null >&2
    status=1
  fi
done
exit $status
