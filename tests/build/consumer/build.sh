#!/usr/bin/env bash
# Builds an example against an installed copy of the library, as a project of its own would, and runs it.
#
#   build.sh package_shared|package_static|pkgconfig_shared|pkgconfig_static COMPILER PREFIX
set -euo pipefail
way=$1 compiler=$2 prefix=$( realpath "$3" )
source=$( dirname "$( realpath "$0" )" )
program=$source/../../../examples/decode_buffer.cpp
types=$source/knows_types.cpp
build=$prefix-$way
rm -rf "$build"
mkdir -p "$build"

case "$way" in
   package_*)
      [[ $way == *_shared ]] && shared=ON || shared=OFF
      cmake -G Ninja -S "$source" -B "$build" -D CMAKE_CXX_COMPILER="$compiler" -D CMAKE_PREFIX_PATH="$prefix" \
         -D KIND="${way#package_}" -D BUILD_SHARED_LIBS=$shared -D PROGRAM="$program" -D TYPES="$types"
      cmake --build "$build"
      ;;
   pkgconfig_*)
      PKG_CONFIG_PATH=$( dirname "$( find "$prefix" -name Ldp.pc )" )
      export PKG_CONFIG_PATH
      libdir=$( pkg-config --variable=libdir Ldp )
      case "$way" in
         *_shared) read -ra libraries <<<"$( pkg-config --libs Ldp ) -Wl,-rpath,$libdir" ;;
         *_static) libraries=( "$libdir/libLdp.a" ) ;;
      esac
      read -ra flags <<<"$( pkg-config --cflags Ldp )"
      "$compiler" -std=c++20 "${flags[@]}" "$program" "${libraries[@]}" -o "$build/consumer"
      "$compiler" -std=c++20 "${flags[@]}" "$types" "${libraries[@]}" -o "$build/types"
      pkg-config --modversion Ldp >"$build/version"
      ;;
esac

"$build/consumer"
version=$( "$build/types" )
[[ $version == "$( cat "$build/version" )" ]] || { echo "build.sh: the library is $version, the package is not" >&2; exit 1; }
needed=$( readelf --dynamic "$build/consumer" "$build/types" )
case "$way" in
   *_shared) [[ $( grep -cF '[libLdp.so.0]' <<<"$needed" ) == 2 ]] ;;
   *_static) # a program that only decodes takes no more than that
      [[ $needed != *libLdp* ]] && strip "$build/consumer" && (( $( stat -c %s "$build/consumer" ) < 1000000 ))
      ;;
esac || { echo "build.sh: $way does not link the library that way" >&2; exit 1; }
