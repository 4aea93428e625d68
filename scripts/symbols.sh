#!/usr/bin/env bash
# The exported symbols of the shared library, as dpkg-gensymbols keeps them: a line for each function and object of ours. What
# compilers make as they need it (type information, variables within inlined functions, instances of standard templates) may come and go.
#
#   scripts/symbols.sh LIBRARY VERSION > debian/libldp0.symbols
set -euo pipefail
usage="usage: scripts/symbols.sh LIBRARY VERSION"
library=${1:?$usage} version=${2:?$usage}
made='_Z(T[ISV]|Z|NK?St|St)'
echo "libLdp.so.0 libldp0 #MINVER#"
echo " (optional|regex)\"^$made.*@Base\$\" $version"
nm --dynamic --defined-only "$library" | awk '{ print $3 }' | grep -Ev "^$made" | LC_ALL=C sort -u | sed "s/.*/ &@Base $version/"
