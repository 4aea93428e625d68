#!/usr/bin/env bash
# What has changed in the binary interface of the shared library since the last tag. It tells, and fails only when it cannot.
#
#   scripts/abi.sh LIBRARY     with debug information
set -euo pipefail
library=$( realpath "${1:?usage: scripts/abi.sh LIBRARY}" )
cd "$( dirname "$0" )/.."
if ! tag=$( git describe --tags --abbrev=0 2>/dev/null ); then
   echo "abi.sh: there is no tag yet to compare with"
   exit 0
fi
work=$( mktemp -d )
trap 'git worktree remove --force "$work/tree" 2>/dev/null || true; rm -rf "$work"' EXIT
git worktree add --quiet --detach "$work/tree" "$tag"
( cd "$work/tree" && cmake --preset release -D LDP_TOOLS=OFF -D LDP_TESTS=OFF -D LDP_BENCH=OFF && cmake --build --preset release --target Ldp_shared ) >/dev/null
status=0
abidiff --headers-dir1 "$work/tree/include" --headers-dir2 include "$work/tree/build/release/lib/libLdp.so.0" "$library" || status=$?
(( ( status & 3 ) == 0 )) # bits 2 and 3 say that something has changed, and that is news, not a failure
