#!/usr/bin/env bash
# Makes the Debian packages, has lintian judge them, and uses them in a clean Debian: a program is built against libldp-dev and a
# capture is decoded with ldptool and by Python, each with nothing installed but what its package asks for.
#
#   scripts/deb.sh FOLDER     the packages lie there at the end
set -euo pipefail
cd "$( dirname "$0" )/.."
out=$( mkdir -p "${1:?usage: scripts/deb.sh FOLDER}" && cd "$1" && pwd )

# A build writes into its tree and beside it, so it gets one of its own.
work=$( mktemp -d )
trap 'rm -rf "$work"' EXIT
mkdir "$work/libldp"
git ls-files -z --cached --others --exclude-standard | tar --null --files-from=- --create | tar --extract --directory="$work/libldp"
( cd "$work/libldp" && dpkg-buildpackage --build=binary --no-sign )
rm -f "$out"/*.deb
mv "$work"/*.deb "$out"
lintian --fail-on error "$out"/*.deb

if [[ $EUID -ne 0 ]]; then
   echo "deb.sh: not root, so the packages are not tried in a clean Debian"
   exit 0
fi
release=$( . /etc/os-release && echo "$VERSION_CODENAME" )
root=$work/root
mkdir "$root" "$work/shared"
chmod 755 "$work"
cp "$out"/*.deb examples/observe.cpp tests/captures/many-initial.pcap "$work/shared"
in_root() { chroot "$root" "$@"; }
install_debs() { in_root sh -c "cd /shared && DEBIAN_FRONTEND=noninteractive apt-get -qq install -y --no-install-recommends $*"; } # patterns are for the shell there
echo "deb.sh: a clean $release"
mmdebstrap --quiet --variant=apt --mode=root --customize-hook="copy-in $work/shared /" "$release" "$root"
in_root apt-get -qq update
install_debs ./libldp0_*.deb ./ldptool_*.deb
in_root ldptool --version
[[ $( in_root ldptool decode /shared/many-initial.pcap | wc -l ) -gt 100 ]]
install_debs ./python3-ldp_*.deb
in_root python3 -c 'import ldp; print( ldp.watch( "/shared/many-initial.pcap" ).run().root.speaker.keys(), ldp.LdpAdjStatus.operHoldTime.__doc__ )' |
   grep "10.255.0.1:0.*in seconds"
install_debs ./libldp-dev_*.deb g++ pkg-config
in_root sh -c 'g++ -std=c++20 -o /observe /shared/observe.cpp $( pkg-config --cflags --libs Ldp ) && /observe' | grep -q 'holdTimerExpired'
echo "deb.sh: installed and used"
