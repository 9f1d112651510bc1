#!/usr/bin/env bash
# The D-Bus transport under faults, on a private bus, one function each:
# nothing lost, nothing hanging, nothing leaked (each peer checks its own
# blocks at exit, LeakSanitizer the rest). The bus itself is killed last.
set -u
peer=$1 conf=$2
. "$(dirname "$0")/bus.sh"

# A client killed while the server holds its request: the request goes at
# once, another client is served, and the server exits with nothing left.
client_killed() {
  serve holder || return
  "$peer" one-client & victim=$!
  pids+=($victim)
  until_in "$work/holder.out" inflight && kill -9 "$victim"
  until_in "$work/holder.out" dropped || bad "the server kept a killed client's request"
  "$peer" one-client >/dev/null || bad "a client not served after another was killed"
  stop holder
}

# A process that does not own the server's name sends its notification,
# broadcast and to the client's name: the client takes neither; it takes
# the next from the server's successor (subscribed again, need-update asked).
look_alike() {
  serve publisher || return
  start subscriber received "$peer" subscriber || return
  local client=$last
  for to in "" --destination=org.wifiap._ui._web; do
    bctl emit $to /org/wifiap/ap/apd org.wifiap.IntfWifiAp1 OnProbeReceived ay $("$peer" sample 15 0)
  done
  sleep 1
  [ "$(grep -c received "$work/subscriber.out")" = 1 ] || bad "a look-alike notification was taken"
  kill -9 "$server"; wait "$server" 2>/dev/null
  serve publisher || return
  wait "$client" || bad "no notification from the real server"
  stop publisher
}

# Bodies past the bus's limits are refused before they leave; a call's
# timeout is the one the host set.
limits() {
  serve publisher || return
  "$peer" huge || bad "a body too large for the bus"
  stop publisher
  serve stalled || return
  "$peer" fault-client timeout || bad "the call timeout not kept"
  kill -9 "$server"; wait "$server" 2>/dev/null
}

# Four clients, 10,000 requests each at once: each answered once, the
# server's live heap flat from the 1,000th request to the last.
load() {
  serve load-server 40000 || return
  local c=()
  for i in 0 1 2 3; do "$peer" load-client 10000 $i & c+=($!); pids+=($!); done
  for p in "${c[@]}"; do wait "$p" || bad "a load client failed"; done
  stop load-server
  grep served "$work/load-server.out"
}

# The bus killed under a server and a client with a request in flight: the
# request fails at once, and both see the end and exit cleanly.
bus_killed() {
  serve orphan || return
  "$peer" fault-client bus & client=$!
  pids+=($client)
  until_in "$work/orphan.out" inflight && kill -9 "${pids[0]}"
  wait "$client" || bad "the client did not end cleanly without its bus"
  wait "$server" || bad "the server did not end cleanly without its bus"
}

for t in ${FAULTS:-client_killed look_alike limits load bus_killed}; do
  failed=$status status=0
  $t
  [ $status = 0 ] && echo "ok $t" || echo "FAILED $t"
  status=$((status | failed))
done
exit $status
