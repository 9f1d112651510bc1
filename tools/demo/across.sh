#!/usr/bin/env bash
# The demo across processes: a private dbus-daemon, wifiap-apd playing the
# story, and the two clients as processes of their own (ui/web, then ui/cli
# while web waits, then web again). Leaves in OUT each process's output and
# capture of the bodies it sent, the server's log, and bus.pcap, a
# `busctl capture` of the whole run that Wireshark opens.
#   across.sh TOOLS CONF OUT [STATIONS]
# TOOLS holds wifiap-apd and wifiap-demo; CONF is the bus's configuration.
set -u
tools=$1 conf=$2 out=$3 stations=${4:-4}
mkdir -p "$out"
rm -f "$out"/*.cap "$out"/*.out "$out"/go
pids=()
trap 'for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done; wait 2>/dev/null' EXIT

until_in() {  # until_in FILE TEXT: waits up to 10 s for TEXT in FILE
  for _ in $(seq 100); do grep -q "$2" "$1" 2>/dev/null && return 0; sleep 0.1; done
  echo "across.sh: timed out waiting for '$2' in $1" >&2; return 1
}

dbus-daemon --config-file="$conf" --nofork --print-address=3 3>"$out/address" &
pids+=($!)
until_in "$out/address" unix: || exit 1
address=$(head -n1 "$out/address")

busctl --address="$address" capture >"$out/bus.pcap" 2>"$out/busctl.err" &
capture=$!
pids+=($capture)
"$tools/wifiap-apd" --address "$address" --story --stations "$stations" --stderr \
  --capture "$out/apd.cap" 2>"$out/apd.out" &
apd=$!
pids+=($apd)
until_in "$out/apd.out" ready || exit 1

status=0
client() {  # client NAME: one client's part, its output in NAME.out
  "$tools/wifiap-demo" --bus "$address" --client "$1" --stations "$stations" \
    --capture "$out/$1.cap" >"$out/$1.out" 2>&1
}
mkfifo "$out/go"
client web <"$out/go" & web=$!
pids+=($web)
exec 4>"$out/go"  # web's standard input: it goes on at a line
until_in "$out/web.out" "waiting for the other client" || exit 1
client cli || { echo "across.sh: the client ui/cli failed" >&2; status=1; }
echo >&4
exec 4>&-
wait "$web" || { echo "across.sh: the client ui/web failed" >&2; status=1; }
kill -TERM "$apd"
wait "$apd" || { echo "across.sh: wifiap-apd failed" >&2; status=1; }
sleep 0.2  # the capture's last packets
kill -TERM "$capture"  # a background job ignores SIGINT
wait "$capture" 2>/dev/null
rm -f "$out/go"
exit $status
