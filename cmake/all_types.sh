#!/bin/sh
# Writes a source that names one symbol of each object that registers types when it is loaded: who asks for the table of all types
# takes these objects out of the archive with it, and nobody else does.
#
#   all_types.sh SOURCE NM OBJECT...
set -eu
source=$1 nm=$2
shift 2
exec >"$source"
echo '// Made by all_types.sh.'
count=0
for object; do
   names=$( "$nm" "$object" )
   case "$names" in *_GLOBAL__sub_I_*) ;; *) continue ;; esac
   symbol=$( printf '%s\n' "$names" | sed -n 's/^[0-9a-f]* [TDBR] \(_Z.*\)/\1/p' | head -n 1 )
   [ -n "$symbol" ] || { echo "all_types.sh: $object has no symbol of its own" >&2; exit 1; }
   echo "extern char const symbol$count[] __asm__( \"$symbol\" );"
   count=$(( count + 1 ))
done
echo 'extern "C" char const * const ldpAllTypes[];'
echo 'char const * const ldpAllTypes[] = {'
i=0
while [ $i -lt $count ]; do
   echo "   symbol$i,"
   i=$(( i + 1 ))
done
echo '};'
