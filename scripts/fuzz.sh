#!/usr/bin/env bash
# Runs every fuzz target of a fuzz build for a number of seconds each, beginning from the inputs in
# fuzz/corpus/TARGET and fuzz/kept/TARGET. What a target finds on its way stays in the build folder; an input that breaks it is kept
# in BUILD/artifacts and named at the end.
#
#   scripts/fuzz.sh SECONDS [BUILD [TARGET...]]      BUILD is build/fuzz unless given
set -euo pipefail
cd "$( dirname "$0" )/.."

seconds=${1:?usage: scripts/fuzz.sh SECONDS [BUILD [TARGET...]]}
build=${2:-build/fuzz}
shift $(( $# < 2 ? $# : 2 ))
targets=( "$@" )
if [[ ${#targets[@]} -eq 0 ]]; then
   mapfile -t targets < <( find "$build/bin" -maxdepth 1 -type f -executable -printf '%f\n' 2>/dev/null | sort )
fi
if [[ ${#targets[@]} -eq 0 ]]; then
   echo "fuzz.sh: no fuzz target in $build/bin" >&2
   exit 1
fi

mkdir -p "$build/artifacts"
broken=()
for target in "${targets[@]}"; do
   found=$build/corpus/$target # the first folder that libFuzzer is given takes the new inputs
   mkdir -p "$found"
   kept=()
   for folder in "fuzz/corpus/$target" "fuzz/kept/$target"; do
      [[ ! -d $folder ]] || kept+=( "$folder" )
   done
   log=$build/$target.log
   echo "== $target, $seconds s"
   if "$build/bin/$target" -max_total_time="$seconds" -dict=fuzz/pdu.dict -timeout=10 -print_final_stats=1 \
         -artifact_prefix="$build/artifacts/$target-" "$found" "${kept[@]}" >"$log" 2>&1; then
      grep -E '^stat::(number_of_executed_units|average_exec_per_sec|new_units_added)|DONE' "$log"
   else
      broken+=( "$target" )
      tail -n 60 "$log"
   fi
done

if [[ ${#broken[@]} -gt 0 ]]; then
   echo "fuzz.sh: broken: ${broken[*]}; inputs in $build/artifacts" >&2
   exit 1
fi
