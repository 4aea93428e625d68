#!/usr/bin/env bash
# Configures a project that holds the library as a folder. It builds no more than the two libraries of it, installs nothing and has
# no tests of it.
#
#   configure.sh SHARED COMPILER LDP_SOURCE BUILD
set -euo pipefail
shared=$1 compiler=$2 ldp=$3 build=$4
rm -rf "$build"
cmake -G Ninja -S "$( dirname "$0" )" -B "$build" -D CMAKE_CXX_COMPILER="$compiler" -D BUILD_SHARED_LIBS="$shared" -D LDP_SOURCE="$ldp"

fail() { echo "configure.sh: $*" >&2; exit 1; }
targets=$( ninja -C "$build" -t targets all )
for unwanted in ldptool _tests _bench Fuzz header_check; do
   [[ $targets != *"$unwanted"* ]] || fail "builds $unwanted"
done
[[ $( ctest --test-dir "$build" -N ) == *"Total Tests: 0"* ]] || fail "has tests"
[[ ! -s $build/ldp/cmake_install.cmake ]] || ! grep -q 'file(INSTALL' "$build/ldp/cmake_install.cmake" || fail "has install rules"
