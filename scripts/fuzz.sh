#!/usr/bin/env bash
# Runs fuzz targets of a build, all of them unless some are named.
#
#   scripts/fuzz.sh SECONDS [BUILD [TARGET...]]   each for so long, from its inputs in fuzz/corpus/TARGET and fuzz/kept/TARGET and
#                                                 from what earlier runs have found, which stays in BUILD/corpus; an input that
#                                                 breaks it is kept in BUILD/artifacts and named at the end
#   scripts/fuzz.sh keep [BUILD [TARGET...]]      adds to fuzz/corpus/TARGET the smallest set of finds that reach code which
#                                                 its inputs do not
#   scripts/fuzz.sh replay [BUILD [TARGET...]]    runs the inputs and nothing else
#
# FUZZ_OPTIONS: more options for libFuzzer.
set -euo pipefail
cd "$( dirname "$0" )/.."

what=${1:?usage: scripts/fuzz.sh SECONDS|keep|replay [BUILD [TARGET...]]}
build=${2:-build/fuzz}
shift $(( $# < 2 ? $# : 2 ))
targets=( "$@" )
if [[ ${#targets[@]} -eq 0 ]]; then
   mapfile -t targets < <( find "$build/bin" -maxdepth 1 -type f -executable -name '*Fuzz' -printf '%f\n' 2>/dev/null | sort )
fi
if [[ ${#targets[@]} -eq 0 ]]; then
   echo "fuzz.sh: no fuzz target in $build/bin" >&2
   exit 1
fi

run() { # run TARGET OPTION...: into its log
   "$build/bin/$1" -dict=fuzz/pdu.dict -timeout=10 ${FUZZ_OPTIONS:-} -artifact_prefix="$build/artifacts/$1-" "${@:2}" >"$build/$1.log" 2>&1
}

mkdir -p "$build/artifacts"
broken=()
for target in "${targets[@]}"; do
   corpus=fuzz/corpus/$target
   found=$build/corpus/$target # the first folder that libFuzzer is given takes the new inputs
   mkdir -p "$found" "$corpus"
   kept=( "$corpus" )
   [[ ! -d fuzz/kept/$target ]] || kept+=( "fuzz/kept/$target" )
   case "$what" in
      keep) options=( -merge=1 -use_counters=0 "$corpus" "$found" ) ;; # by code reached: how often tells too little for so many files
      replay) options=( -runs=0 "${kept[@]}" ) ;;
      *) options=( -max_total_time="$what" -print_final_stats=1 "$found" "${kept[@]}" ) ;;
   esac
   echo "== $target, $what"
   if run "$target" "${options[@]}"; then
      grep -E '^stat::(number_of_executed_units|average_exec_per_sec|new_units_added)|DONE|MERGE-OUTER: [0-9]+ new' "$build/$target.log" || true
   else
      broken+=( "$target" )
      tail -n 60 "$build/$target.log"
   fi
done

if [[ ${#broken[@]} -gt 0 ]]; then
   echo "fuzz.sh: broken: ${broken[*]}; inputs in $build/artifacts" >&2
   exit 1
fi
