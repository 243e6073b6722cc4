#!/usr/bin/env bash
# Whole-process times of orvasto-cli against SoX on the same 10-minute 44.1 kHz stereo
# 16-bit file, in one run: open + effect + save against `sox -D in out effect` (neither
# dithers). Prints both times (the best of several runs) and the ratio SoX / orvasto-cli;
# the goal is at least 2 on every line. Then the peak memory (max RSS) of
# `open ... Volume ... save` against the size of the sample data; the goal is at most 2.2.
#
#   bench/cli_vs_sox.sh [MINUTES]      default 10
#
# BENCH_WORK chooses the folder the files go to (default: a new folder in /tmp). Saving
# flushes the file to disk before it replaces the old one and SoX does not, so on a slow disk
# the flush weighs on our side; a tmpfs folder (BENCH_WORK=/dev/shm) compares the work alone.
# BENCH_RUNS sets how many runs each time is the best of (default 5).
#
# Builds orvasto-cli in Release in its own folder. Not run in CI. sox is only the peer here.
set -euo pipefail

minutes="${1:-10}"
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${BENCH_BUILD:-$root/build-cli-bench}"
work="$(mktemp -d "${BENCH_WORK:-/tmp}/orvasto-cli-bench.XXXXXX")"
trap 'rm -rf "$work"' EXIT
runs="${BENCH_RUNS:-5}"

command -v sox >/dev/null || { echo "sox is needed for the comparison" >&2; exit 1; }
[ -x /usr/bin/time ] || { echo "GNU time (/usr/bin/time) is needed" >&2; exit 1; }

cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVASTO_TESTS=OFF >/dev/null
ninja -C "$build" -j2 orvasto-cli >/dev/null
cli="$build/cli/orvasto-cli"

in="$work/in.wav"
"$cli" new 44100 16 2 MakeNoise "Volume=0.3" "Length=$((minutes * 60)) s" save "$in"
cat "$in" >/dev/null  # every run reads from the page cache
bytes=$(( $(stat -c %s "$in") - 44 ))

# Best elapsed seconds of `runs` runs of the command, and the best CPU seconds (user +
# system) of the same runs: on a busy machine the CPU time is the steadier figure.
best() {
  local t c b="" bc=""
  for _ in $(seq "$runs"); do
    rm -f "$work/out.wav"
    /usr/bin/time -o "$work/time.txt" -f "%e %U %S" "$@" >/dev/null 2>&1
    read -r t u s < <(tail -n1 "$work/time.txt")
    c=$(awk -v u="$u" -v s="$s" 'BEGIN{printf "%.2f", u + s}')
    if [ -z "$b" ] || awk -v a="$t" -v b="$b" 'BEGIN{exit !(a<b)}'; then b="$t"; fi
    if [ -z "$bc" ] || awk -v a="$c" -v b="$bc" 'BEGIN{exit !(a<b)}'; then bc="$c"; fi
  done
  echo "$b $bc"
}

printf "%-10s %12s %12s %8s   %s\n" "effect" "orvasto-cli" "sox" "ratio" "(CPU seconds: ours, sox, ratio)"
fail=0
compare() {
  local label="$1"; shift
  local -a ours=() theirs=()
  while [ "$1" != "--" ]; do ours+=("$1"); shift; done
  shift
  theirs=("$@")
  local a b r
  # Each side must work before it is timed.
  "$cli" open "$in" "${ours[@]}" save "$work/out.wav" >/dev/null ||
    { echo "orvasto-cli failed on $label" >&2; exit 1; }
  sox -D "$in" "$work/out.wav" "${theirs[@]}" 2>/dev/null ||
    { echo "sox failed on $label" >&2; exit 1; }
  local ac bc rc
  read -r a ac < <(best "$cli" open "$in" "${ours[@]}" save "$work/out.wav")
  read -r b bc < <(best sox -D "$in" "$work/out.wav" "${theirs[@]}")
  r=$(awk -v a="$a" -v b="$b" 'BEGIN{ if (a <= 0) a = 0.005; printf "%.2f", b / a }')
  rc=$(awk -v a="$ac" -v b="$bc" 'BEGIN{ if (a <= 0) a = 0.005; printf "%.2f", b / a }')
  printf "%-10s %10ss %10ss %7sx   (%ss, %ss, %sx)\n" "$label" "$a" "$b" "$r" "$ac" "$bc" "$rc"
  awk -v r="$r" 'BEGIN{exit !(r < 2)}' && fail=1 || true
}

compare Volume    Volume "Volume Factor=0.5" -- vol 0.5
compare Reverse   Reverse -- reverse
compare FilterLow FilterLow "Frequency=1 kHz" -- lowpass -1 1000
compare PerEcho   PerEcho "Echo Time=100 ms" "Volume Constant=0.5" -- echo 1 1 100 0.5

/usr/bin/time -o "$work/rss.txt" -f "%M" "$cli" open "$in" Volume "Volume Factor=0.5" \
  save "$work/out.wav" >/dev/null 2>&1
rss=$(tail -n1 "$work/rss.txt")
awk -v k="$rss" -v d="$bytes" 'BEGIN{
  printf "peak memory of open + Volume + save: %.1f MB for %.1f MB of samples = %.2f x (goal <= 2.2)\n",
         k * 1024 / 1e6, d / 1e6, k * 1024 / d }'
awk -v k="$rss" -v d="$bytes" 'BEGIN{exit !(k * 1024 / d > 2.2)}' && fail=1 || true

if [ "$fail" -ne 0 ]; then echo "a goal was missed"; exit 1; fi
echo "all goals met"
