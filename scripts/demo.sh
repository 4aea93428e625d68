#!/usr/bin/env bash
# Decodes a capture of two real routers that find each other, open a session and exchange labels: one line for each
# message, then the tables of --stats.
#
#   scripts/demo.sh LDPTOOL
set -euo pipefail
ldptool=${1:?usage: scripts/demo.sh LDPTOOL}
capture=$( dirname "$0" )/../tests/captures/basic-v4.pcap

echo "\$ ldptool decode $( basename "$capture" )"
"$ldptool" decode "$capture"
echo
echo "\$ ldptool decode --stats $( basename "$capture" )"
"$ldptool" decode --stats "$capture"
