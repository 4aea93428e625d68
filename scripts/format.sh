#!/usr/bin/env bash
# Puts every C++ file of the tree into the format of .clang-format.
#
#   scripts/format.sh format         rewrites the files
#   scripts/format.sh format-check   changes nothing, names what differs, exit 1
set -euo pipefail
cd "$( dirname "$0" )/.."

case "${1:-}" in
   format) options=( -i ) ;;
   format-check) options=( --dry-run --Werror ) ;;
   *) echo "usage: scripts/format.sh format|format-check" >&2; exit 2 ;;
esac

# Files not yet committed too, but not those that a commit in progress removes.
git ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp' |
   while IFS= read -r -d '' file; do [[ ! -e $file ]] || printf '%s\0' "$file"; done |
   xargs -0 -r -n 20 -P "$( nproc )" clang-format "${options[@]}"
