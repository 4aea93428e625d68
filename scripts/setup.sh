#!/usr/bin/env bash
# Installs the Debian packages that something needs, as far as they are missing. Says nothing and asks no network when nothing is
# missing.
#
#   scripts/setup.sh GROUP...
#      tool         ldptool and the libraries            tests        the suite, the benchmarks, the Python module
#      clang        second compiler, sanitizers, fuzzer, formatting    docs         reference documentation
#      deb          making and trying Debian packages, comparing interfaces
#      comparison   what the benchmarks are measured against: decoders, and libraries that a table leaves out where they are missing
set -euo pipefail

packages=( g++ cmake ninja-build ccache pkg-config python3 )
for group in "$@"; do
   case "$group" in
      tool | tests) packages+=( libtins-dev libpcap-dev libmicrohttpd-dev zlib1g-dev libcli11-dev rapidjson-dev ) ;;&
      tool) ;;
      tests) packages+=( git libgtest-dev librapidcheck-dev libbenchmark-dev python3-jsonschema pybind11-dev python3-dev python3-pytest ) ;;
      clang) packages+=( git clang clang-format libclang-rt-14-dev libc++-14-dev libc++abi-14-dev ) ;;
      docs) packages+=( doxygen ) ;;
      deb) packages+=( git debhelper dh-python dpkg-dev lintian mmdebstrap abigail-tools pybind11-dev python3-dev ) ;;
      comparison) packages+=( tcpdump tshark libabsl-dev libboost-dev libsigc++-2.0-dev libprotobuf-dev protobuf-compiler ) ;;
      *) echo "usage: scripts/setup.sh [tool|tests|clang|docs|deb|comparison]..." >&2; exit 2 ;;
   esac
done

if ! command -v dpkg-query >/dev/null; then
   echo "setup.sh: not a Debian system; please see to the equivalents of: ${packages[*]}" >&2
   exit 0
fi

# dpkg-query fails when it does not know a name at all; what it prints tells enough.
installed=$( dpkg-query -W -f '${Package}:${db:Status-Status}\n' "${packages[@]}" 2>/dev/null || true )
missing=()
for package in "${packages[@]}"; do
   grep -qxF "${package}:installed" <<<"$installed" || missing+=( "$package" )
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

echo "setup.sh: installing ${missing[*]}"
as_root=()
[[ $EUID -eq 0 ]] || as_root=( sudo )
apt() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq "$@"; }
apt update
apt install -y --no-install-recommends "${missing[@]}"
