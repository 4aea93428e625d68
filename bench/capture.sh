#!/usr/bin/env bash
# Times ldptool beside tcpdump and tshark on one large capture and prints a Markdown table.
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

row() { # NAME CAPTURE MESSAGES SECONDS MEMORY BASE_SECONDS
   awk -v name="$1" -v capture="$2" -v n="$3" -v s="$4" -v m="$5" -v base="$6" 'BEGIN {
      printf "| %s | %s | %.2f | %d | %s | %.1f |\n", name, capture, s, n / s, base == "" ? "" : sprintf( "%.1f", base / s ), m }'
}

half=$((megabytes / 2))
messages=$(make_capture "$megabytes" aligned)
half_messages=$(make_capture "$half" aligned)
split_messages=$(make_capture "$megabytes" split)
aligned=$work/aligned-$megabytes.pcap

echo "$messages messages in $megabytes MB; $(nproc) cores, $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1)"
echo
echo "| command | capture | CPU seconds | messages/s | times tcpdump | peak MiB |"
echo "|---|---|---|---|---|---|"
base=
if command -v tcpdump >/dev/null; then
   read -r base memory < <(measure tcpdump -nn -vv -r "$aligned")
   row "tcpdump -nn -vv" "$megabytes MB aligned" "$messages" "$base" "$memory" "$base"
else
   echo "capture.sh: no tcpdump to compare with (apt-get install tcpdump)" >&2
fi
if command -v tshark >/dev/null; then
   read -r seconds memory < <(measure tshark -n -T fields -e ldp.msg.type -r "$aligned")
   row "tshark -T fields" "$megabytes MB aligned" "$messages" "$seconds" "$memory" "$base"
else
   echo "capture.sh: no tshark to compare with (apt-get install tshark)" >&2
fi
ours() { # COMMAND CAPTURE FILE MESSAGES BASE: COMMAND is that of ldptool with its options
   local seconds memory
   # shellcheck disable=SC2086 # the command is several words
   read -r seconds memory < <(measure "$tool" $1 "$3")
   row "ldptool $1" "$2" "$4" "$seconds" "$memory" "$5"
}
ours decode "$megabytes MB aligned" "$aligned" "$messages" "$base"
ours decode "$half MB aligned" "$work/aligned-$half.pcap" "$half_messages" ""
ours decode "$megabytes MB split" "$work/split-$megabytes.pcap" "$split_messages" ""
ours "decode --stats" "$megabytes MB aligned" "$aligned" "$messages" "$base"
ours "decode --full" "$megabytes MB aligned" "$aligned" "$messages" "$base"
ours "decode --json" "$megabytes MB aligned" "$aligned" "$messages" "$base"
ours "watch --neighbors" "$megabytes MB aligned" "$aligned" "$messages" "$base"
ours "watch --neighbors" "$half MB aligned" "$work/aligned-$half.pcap" "$half_messages" ""
ours "watch --replicate --check" "$megabytes MB aligned" "$aligned" "$messages" "$base"
