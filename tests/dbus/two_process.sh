#!/usr/bin/env bash
# A server and a client in two processes over a private bus: every message,
# then the server killed with a request in flight. The bus and every process
# started here stop on any exit.
set -u
peer=$1 conf=$2
work=$(mktemp -d)
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

until_in() {  # until_in FILE TEXT: waits up to 10 s for TEXT in FILE
  for _ in $(seq 100); do grep -q "$2" "$1" 2>/dev/null && return 0; sleep 0.1; done
  echo "timed out waiting for '$2' in $1" >&2; return 1
}

dbus-daemon --config-file="$conf" --nofork --print-address=3 3>"$work/address" &
pids+=($!)
until_in "$work/address" unix: || exit 1
DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$work/address")
export DBUS_SESSION_BUS_ADDRESS

serve() {  # serve ROLE: a server, once its name is on the bus
  "$peer" "$1" >"$work/$1.out" & server=$!
  pids+=($server)
  until_in "$work/$1.out" ready
}

status=0
serve server || exit 1
"$peer" client || { echo "client failed" >&2; status=1; }
wait "$server" || { echo "server failed" >&2; status=1; }

serve stalled || exit 1
"$peer" fault-client & client=$!
pids+=($client)
until_in "$work/stalled.out" inflight && kill -9 "$server"
wait "$client" || { echo "fault-client failed" >&2; status=1; }
exit $status
