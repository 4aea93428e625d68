#!/usr/bin/env bash
# Runs every benchmark program (*_bench) of a build, one after the other. Options behind the folder are handed to each of them.
#
#   scripts/bench.sh BIN [--benchmark_filter=...]
set -euo pipefail
bin=${1:?usage: scripts/bench.sh BIN [OPTION...]}
shift

shopt -s nullglob
programs=( "$bin"/*_bench )
if [[ ${#programs[@]} -eq 0 ]]; then
   echo "bench.sh: no *_bench in $bin" >&2
   exit 1
fi
for program in "${programs[@]}"; do
   "$program" "$@"
done
