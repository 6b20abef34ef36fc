#!/usr/bin/env bash
# Builds the libFuzzer targets with clang in a build directory of their own and runs each for a
# number of seconds, seeded with inputs cut from the shared corpus and the data folder, each with
# the dictionary of its format.
#   fuzz/run.sh [seconds per target, default 60] [target...] [build directory]
# With no target named, every target runs. A build directory is an argument holding a "/" (or the
# variable TVX_FUZZ_BUILD); the default is build-fuzz. A short run for CI: fuzz/run.sh 20.
# Prints one line per target: its name, seconds, executions, executions a second and findings.
# Needs clang++ and its runtime (Debian: clang, libclang-rt-14-dev). Exits non-zero when a target
# finds a crash, a hang or a leak; the input that did it is left in <build>/<target>.work.
set -euo pipefail

top=$(cd "$(dirname "$0")/.." && pwd)
seconds=60
if [ $# -gt 0 ] && [[ "$1" =~ ^[0-9]+$ ]]; then
  seconds=$1
  shift
fi
build=${TVX_FUZZ_BUILD:-$top/build-fuzz}
all=(fuzz_recognition fuzz_excellon fuzz_hpgl fuzz_dxf fuzz_parameter_blocks fuzz_macro_expansion
  fuzz_ini fuzz_menu fuzz_aperture_table fuzz_gerber_pass fuzz_import)
targets=()
for arg in "$@"; do
  if [[ "$arg" == */* ]]; then
    build=$arg
  else
    case " ${all[*]} " in
      *" $arg "*) targets+=("$arg") ;;
      *) echo "unknown target $arg; the targets: ${all[*]}" >&2; exit 2 ;;
    esac
  fi
done
[ ${#targets[@]} -gt 0 ] || targets=("${all[@]}")
case "$build" in /*) ;; *) build=$PWD/$build ;; esac
corpus=${TVX_CORPUS_DIR:-$top/../shared/corpus}
# A clone elsewhere finds the workspace's shared corpus, as the tests do.
[ -f "$corpus/MANIFEST.tsv" ] || corpus=/work/shared/corpus
jobs=${JOBS:-2}

flags="-g -O1 -fno-omit-frame-pointer -fsanitize=address,undefined -fno-sanitize-recover=undefined -fsanitize=fuzzer-no-link"
cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_FLAGS="$flags" \
  -DTVX_BUILD_FUZZERS=ON -DTVX_BUILD_TESTS=OFF -DTVX_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build "$build" -j "$jobs" --target "${targets[@]}"

# Seeds, each cut to what its target reads. The first byte of an Excellon, drawing, parameter
# block or whole import seed is not part of the text: it picks the format or the kind (see the
# targets).
seeds="$build/seeds"
rm -rf "$seeds"
for target in "${all[@]}"; do mkdir -p "$seeds/$target"; done
data="$top/data/COUNTRY"
for file in "$data"/*/GBRVIEWER.MEN "$data"/*/GBRVIEWER.MSG; do
  [ -f "$file" ] || continue
  name=$(basename "$(dirname "$file")").$(basename "$file")
  cp "$file" "$seeds/fuzz_ini/$name"
  cp "$file" "$seeds/fuzz_menu/$name"
done
printf '[Settings]\nUnit=1\nLanguage = English\n\n; a comment\n[Window]\nLeft=10\nTitle="  padded  "\n' \
  >"$seeds/fuzz_ini/settings"
printf '\357\273\277[A]\r\nKey=Value\r\n[a]\r\nkey=second\r\n' >"$seeds/fuzz_ini/bom-crlf"
for file in "$top"/data/SYS/*.APT "$corpus"/gerbv/ekf/*.apt "$corpus"/gerbv/ekf/*.gap \
  "$corpus"/gerbv/protel-pnp/*.apr; do
  [ -f "$file" ] || continue
  cp "$file" "$seeds/fuzz_aperture_table/$(basename "$file")"
done
printf '1000,10,0,0\r\n"2540",11,20,30\r\n#,#,#,#\r\n' >"$seeds/fuzz_aperture_table/minimal"
if [ -f "$corpus/MANIFEST.tsv" ]; then
  awk -F'\t' 'NR > 1 { print $1 "\t" $2 }' "$corpus/MANIFEST.tsv" | while IFS=$'\t' read -r file kind; do
    name=$(echo "$file" | tr '/' '_')
    # Recognition looks at the start of a file most: its first 4 KB.
    head -c 4096 "$corpus/$file" >"$seeds/fuzz_recognition/$name"
    { printf '\000'; cat "$corpus/$file"; } >"$seeds/fuzz_import/$name"
    case "$kind" in
      gerber*)
        cp "$corpus/$file" "$seeds/fuzz_gerber_pass/$name"
        { printf '\012'; cat "$corpus/$file"; } >"$seeds/fuzz_import/$name.drill"
        # Parameter blocks: the first 40 distinct %...% blocks one by one, and all of a file's
        # blocks in a row (macros and the apertures that use them), cut to 4 KB.
        # (A reader further on may close a pipe early; that is no failure.)
        { awk 'BEGIN { RS = "%" } NR % 2 == 0 { gsub(/[\r\n]/, "") } NR % 2 == 0 && NF && !seen[$0]++ {
            print "%" $0 "%" }' "$corpus/$file" || true; } | head -n 40 | {
          n=0
          while IFS= read -r block; do
            n=$((n + 1))
            { printf '\000'; printf '%s' "$block"; } >"$seeds/fuzz_parameter_blocks/$name.$n"
          done
        } || true
        { printf '\000'; awk 'BEGIN { RS = "%" } NR % 2 == 0 { printf "%%%s%%", $0 }' \
          "$corpus/$file" || true; } | head -c 4096 >"$seeds/fuzz_parameter_blocks/$name.all"
        # Each %AM...% block becomes one macro seed: "0.5X0.25X0.1", a line break, its lines.
        awk 'BEGIN { RS = "%" } /^[ \r\n]*AM/ { gsub(/[\r\n]/, ""); sub(/^AM[^*]*\*/, ""); print }' \
          "$corpus/$file" | {
          n=0
          while IFS= read -r lines; do
            n=$((n + 1))
            { printf '0.5X0.25X0.1\n%s' "$lines" || true; } |
              head -c 4096 >"$seeds/fuzz_macro_expansion/$name.$n"
          done
        } || true
        ;;
      excellon)
        { printf '\010'; cat "$corpus/$file"; } >"$seeds/fuzz_import/$name.one"
        # Under each of four formats (inch or millimetres, left- or right-aligned numbers), the
        # header, the tools and the first holes: the first 2 KB.
        for choice in '\000' '\001' '\021' '\045'; do
          { printf "$choice"; head -c 2048 "$corpus/$file"; } \
            >"$seeds/fuzz_excellon/$name.$(printf "$choice" | od -An -tu1 | tr -d ' ')"
        done
        ;;
      dxf)
        # The drawing's first 4 KB, in millimetres, and in inches with true line sizes.
        for choice in '\000' '\003'; do
          { printf "$choice"; head -c 4096 "$corpus/$file"; } \
            >"$seeds/fuzz_dxf/$name.$(printf "$choice" | od -An -tu1 | tr -d ' ')"
        done
        ;;
    esac
  done
else
  echo "no corpus at $corpus: the targets start from small seeds" >&2
fi
# A few small seeds of each kind, so that no target starts empty.
printf '%%ADD10C,0.01*%%D10*X0Y0D03*M02*' >"$seeds/fuzz_gerber_pass/minimal"
{ printf '\000'; cat "$seeds/fuzz_gerber_pass/minimal"; } >"$seeds/fuzz_import/minimal"
cp "$seeds/fuzz_gerber_pass/minimal" "$seeds/fuzz_recognition/minimal"
printf '0.5\n1,1,$1,0,0*$2=$1x2*21,1,$2,0.1,0,0,45*' >"$seeds/fuzz_macro_expansion/minimal"
printf '\001%%FSLAX24Y24*MOIN*%%%%AMBOX*21,1,$1,$2,0,0,0*%%%%ADD10BOX,0.1X0.2*%%%%SRX2Y2I1J1*%%' \
  >"$seeds/fuzz_parameter_blocks/minimal"
printf '\000M48\nINCH,LZ\nT01C0.035\n%%\nT01\nX001Y001\nG85X002Y002\nM30\n' \
  >"$seeds/fuzz_excellon/minimal"
printf 'IN;IP0,0,4000,4000;SC0,100,0,100;WU0;PW0.2,1;SP1;PU10,10;PD20,10,20,20;AA15,15,90;CI5;RA30,30;WG5,0,90;LT2;PR5,5;DT@;LBTEXT@;PM0;PD40,40,50,40;AA45,45,90;CI3;PM1;PU60,60;PD70,60;PM2;FP;EP;' \
  >"$seeds/fuzz_hpgl/minimal"
# A drawing with a header, nested blocks and their inserts (one seen from below), and each entity
# the reader draws: bulges in a light polyline and an old-style one, every kind of hatch edge, a
# spline by its knots, an ellipse, a slanted circle, text and formatted multi-line text.
{
  printf '\000'
  printf '%s\n' 0 SECTION 2 HEADER 9 '$ACADVER' 1 AC1015 9 '$INSUNITS' 70 4 \
    9 '$EXTMIN' 10 0 20 0 30 0 9 '$EXTMAX' 10 100 20 100 30 0 0 ENDSEC \
    0 SECTION 2 BLOCKS 0 BLOCK 8 0 2 PAD 70 0 10 1 20 1 30 0 0 CIRCLE 8 0 10 1 20 1 40 0.5 \
    0 LINE 8 0 10 0 20 0 11 2 21 2 0 INSERT 8 0 2 INNER 10 0 20 0 0 ENDBLK \
    0 BLOCK 2 INNER 10 0 20 0 0 ARC 10 0 20 0 40 1 50 0 51 90 0 ENDBLK 0 ENDSEC \
    0 SECTION 2 ENTITIES 0 INSERT 8 0 2 PAD 10 10 20 10 41 2 42 1 50 30 \
    0 INSERT 2 PAD 10 20 20 10 210 0 220 0 230 -1 \
    0 LWPOLYLINE 90 4 70 1 43 0.2 10 0 20 0 42 0.5 10 10 20 0 10 10 20 10 42 -1 10 0 20 10 \
    0 HATCH 10 0 20 0 30 0 210 0 220 0 230 1 2 SOLID 70 1 71 0 91 2 \
    92 2 72 1 73 1 93 3 10 30 20 30 42 0.3 10 40 20 30 10 40 20 40 97 0 \
    92 1 93 4 72 1 10 50 20 50 11 60 21 50 72 2 10 60 20 55 40 5 50 270 51 90 73 1 \
    72 3 10 55 20 60 11 5 21 0 40 0.5 50 0 51 180 73 0 \
    72 4 94 3 73 0 74 0 95 8 96 4 40 0 40 0 40 0 40 0 40 1 40 1 40 1 40 1 \
    10 50 20 60 10 45 20 58 10 45 20 52 10 50 20 50 97 0 75 0 76 1 98 0 \
    0 SPLINE 70 8 71 3 72 8 73 4 40 0 40 0 40 0 40 0 40 1 40 1 40 1 40 1 \
    10 0 20 20 30 0 10 5 20 30 30 0 10 10 20 10 30 0 10 15 20 20 30 0 \
    0 ELLIPSE 10 70 20 70 30 0 11 10 21 0 31 0 40 0.5 41 0 42 6.283185307 \
    0 TEXT 10 5 20 80 40 2.5 1 Board 50 15 72 1 11 10 21 80 \
    0 MTEXT 10 5 20 90 40 2.5 71 5 1 '{\fArial|b0;First}\PSecond \S1^2;' 11 1 21 1 \
    0 LINE 10 0 20 0 11 100 21 100 0 ARC 10 50 20 50 40 10 50 45 51 135 \
    0 CIRCLE 10 50 20 50 40 3 210 0 220 0.6 230 0.8 \
    0 POLYLINE 66 1 70 1 0 VERTEX 10 0 20 0 42 1 0 VERTEX 10 5 20 0 0 VERTEX 10 5 20 5 \
    0 SEQEND 0 SOLID 10 0 20 0 11 1 21 0 12 0 22 1 13 1 23 1 \
    0 3DFACE 10 0 20 0 11 1 21 0 12 1 22 1 13 1 23 1 0 LEADER 10 0 20 0 10 5 20 5 \
    0 ENDSEC 0 EOF
} >"$seeds/fuzz_dxf/minimal"
# The corpus's plotter files, the first 4 KB of each.
for file in "$corpus"/hp2xx/hp-tests/*; do
  [ -f "$file" ] || continue
  head -c 4096 "$file" >"$seeds/fuzz_hpgl/$(basename "$file")"
done

# The dictionary of each target: recognition and the whole import see every format.
dicts="$build/dicts"
mkdir -p "$dicts"
cat "$top"/fuzz/dict/{gerber,excellon,hpgl,dxf}.dict >"$dicts/all.dict"
dictOf() {
  case "$1" in
    fuzz_recognition | fuzz_import) echo "$dicts/all.dict" ;;
    fuzz_excellon) echo "$top/fuzz/dict/excellon.dict" ;;
    fuzz_hpgl) echo "$top/fuzz/dict/hpgl.dict" ;;
    fuzz_dxf) echo "$top/fuzz/dict/dxf.dict" ;;
    fuzz_parameter_blocks | fuzz_gerber_pass) echo "$top/fuzz/dict/gerber.dict" ;;
    fuzz_macro_expansion) echo "$top/fuzz/dict/macro.dict" ;;
    fuzz_ini) echo "$top/fuzz/dict/ini.dict" ;;
    fuzz_aperture_table) echo "$top/fuzz/dict/apt.dict" ;;
    fuzz_menu) echo "$top/fuzz/dict/menu.dict" ;;
  esac
}

status=0
summary=()
for target in "${targets[@]}"; do
  work="$build/$target.work"
  mkdir -p "$work"
  log="$build/$target.log"
  marker="$build/$target.started"
  touch "$marker"
  echo "== $target for ${seconds}s (log: $log)"
  # Inputs as long as what the target reads. A whole import may rightly repeat a small file's
  # elements ten thousand times (step and repeat), so its inputs are shorter and given more time.
  maxlen=4096 timeout=10
  case "$target" in
    fuzz_gerber_pass) maxlen=65536 ;;
    fuzz_excellon) maxlen=2048 ;;
    fuzz_dxf) maxlen=4097 ;;
    fuzz_import) timeout=30 ;;
  esac
  start=$(date +%s.%N)
  if ! (cd "$work" && "$build/bin/$target" -max_total_time="$seconds" -timeout=$timeout \
        -rss_limit_mb=2048 -malloc_limit_mb=1024 -max_len=$maxlen -print_final_stats=1 \
        -dict="$(dictOf "$target")" "$work" "$seeds/$target" >"$log" 2>&1); then
    tail -n 40 "$log" >&2
    status=1
  fi
  end=$(date +%s.%N)
  findings=$(find "$work" -maxdepth 1 -newer "$marker" \
    \( -name 'crash-*' -o -name 'timeout-*' -o -name 'leak-*' -o -name 'oom-*' \) | sort)
  count=0
  if [ -n "$findings" ]; then
    count=$(echo "$findings" | wc -l)
    echo "$target found failing inputs:" >&2
    echo "$findings" >&2
    status=1
  fi
  units=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  summary+=("$(awk -v t="$target" -v s="$start" -v e="$end" -v u="${units:-0}" -v f="$count" \
    'BEGIN { d = e - s; printf "%-24s %8.1f s %12d execs %10.0f execs/s %3d findings", t, d, u, (d > 0 ? u / d : 0), f }')")
done

echo "== summary: target, seconds, executions, executions a second, findings"
printf '%s\n' "${summary[@]}"
awk '{ n += $4 } END { printf "total %d executions\n", n }' <<<"$(printf '%s\n' "${summary[@]}")"
exit $status
