#!/usr/bin/env bash
# Times ldptool beside tcpdump and tshark on one large capture and prints a Markdown table, with the aims.
#
#   bench/capture.sh [LDPTOOL [MEGABYTES]]        defaults: build/release/bin/ldptool 100
#
# The capture is many-initial.pcap over and over. 'aligned' puts one whole PDU into each segment, since tcpdump does not put
# TCP together; 'split' lets PDUs straddle segments. Each figure is the best of three runs with the output to /dev/null, in
# seconds of processor time, which other work on the machine disturbs least.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
tool=${1:-$here/../build/release/bin/ldptool}
megabytes=${2:-100}
runs=3
[ -x "$tool" ] || { echo "capture.sh: $tool is not there; build it first: cmake --build --preset release" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
make_capture() { # MEGABYTES KIND: writes $work/KIND-MEGABYTES.pcap, prints its number of messages
   python3 "$here/make_big.py" "$here/../tests/captures/many-initial.pcap" "$work/$2-$1.pcap" "$1" "$2" |
      sed 's/.*messages=\([0-9]*\).*/\1/'
}

# COMMAND...: prints processor seconds and peak memory in MiB of the best run.
measure() {
   python3 - "$runs" "$@" <<'PY'
import os, subprocess, sys
best = None
for _ in range(int(sys.argv[1])):
    process = subprocess.Popen(sys.argv[2:], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    seconds = usage.ru_utime + usage.ru_stime
    if status:
        sys.exit(f"capture.sh: {sys.argv[2]} failed")
    if best is None or seconds < best[0]:
        best = (seconds, usage.ru_maxrss / 1024)
print("%.3f %.1f" % best)
PY
}

row() { # NAME SECONDS MEMORY [AIM]: the aim is how often it is to be faster than tcpdump
   awk -v name="$1" -v n="$messages" -v s="$2" -v m="$3" -v aim="${4:-}" -v base="$base" 'BEGIN {
      if ( base != "" ) times = sprintf( "%.1f", base / s )
      if ( aim != "" && base != "" ) aim = aim ( base / s >= aim ? ", met" : ", missed" )
      printf "| %s | %.2f | %d | %s | %s | %.1f |\n", name, s, n / s, times, aim, m }'
}

messages=$(make_capture "$megabytes" aligned)
make_capture "$megabytes" split >/dev/null
aligned=$work/aligned-$megabytes.pcap

echo "$messages messages in $megabytes MB; $(nproc) cores, $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)"
echo
echo "| command | CPU seconds | messages/s | times tcpdump | aim | peak MiB |"
echo "|---|---|---|---|---|---|"
base=
if command -v tcpdump >/dev/null; then
   read -r base memory < <(measure tcpdump -nn -vv -r "$aligned")
   row "tcpdump -nn -vv" "$base" "$memory"
else
   echo "capture.sh: no tcpdump to compare with (apt-get install tcpdump)" >&2
fi
if command -v tshark >/dev/null; then
   read -r seconds memory < <(measure tshark -n -T fields -e ldp.msg.type -r "$aligned")
   row "tshark -T fields" "$seconds" "$memory"
else
   echo "capture.sh: no tshark to compare with (apt-get install tshark)" >&2
fi
ours() { # COMMAND FILE [AIM]: COMMAND is that of ldptool with its options
   local seconds memory
   # shellcheck disable=SC2086 # the command is several words
   read -r seconds memory < <(measure "$tool" $1 "$2")
   row "ldptool $1${4:-}" "$seconds" "$memory" "${3:-}"
}
ours decode "$aligned" 15
ours decode "$work/split-$megabytes.pcap" "" ", PDUs split"
ours "decode --stats" "$aligned"
ours "decode --json" "$aligned" 6
ours "decode --full" "$aligned" 8
ours "watch --neighbors" "$aligned" 10
ours "watch --replicate --check" "$aligned" 6
