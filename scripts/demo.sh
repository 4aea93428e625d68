#!/usr/bin/env bash
# Decodes a capture of three real routers that find each other, open sessions, exchange labels and go: a line for each message, then
# the tables of --stats. Then what a monitor knows of three that stay.
#
#   scripts/demo.sh LDPTOOL
set -euo pipefail
ldptool=${1:?usage: scripts/demo.sh LDPTOOL}
captures=$( dirname "$0" )/../tests/captures

show() { # show CAPTURE ARGUMENTS...
   echo "\$ ldptool ${*:2} $1"
   "$ldptool" "${@:2}" "$captures/$1"
   echo
}

show basic-v4.pcap decode
show basic-v4.pcap decode --stats
show timers.pcap watch --neighbors
show timers.pcap watch --bindings=10.255.0.0/16
