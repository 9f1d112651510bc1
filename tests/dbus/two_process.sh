#!/usr/bin/env bash
# A server and a client in two processes over a private bus: every message,
# then the server killed with a request in flight, then killed and restarted
# under a subscriber, then called by a plain client (busctl). The bus and
# every process started here stop on any exit.
set -u
peer=$1 conf=$2
. "$(dirname "$0")/bus.sh"

serve() {  # serve ROLE: a server, once its name is on the bus
  rm -f "$work/$1.out"
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

serve publisher || exit 1
"$peer" subscriber >"$work/subscriber.out" & client=$!
pids+=($client)
until_in "$work/subscriber.out" received && { kill -9 "$server"; wait "$server" 2>/dev/null; }
serve publisher || exit 1
wait "$client" || { echo "no notification from the restarted server" >&2; status=1; }

command -v busctl >/dev/null || { echo "busctl missing (Debian package systemd)" >&2; exit 1; }
bctl() { busctl --address="$DBUS_SESSION_BUS_ADDRESS" --timeout=5 "$@" 2>&1; }
at=(org.wifiap._ap._apd /org/wifiap/ap/apd org.wifiap.IntfWifiAp1)
# Bodies of Configure (row 0) and GetAssocDevStats (13); 2 and 4 are the
# library's header and payload refusals. The server still serves after them.
configure=$("$peer" sample 0 0) response="ay $("$peer" sample 0 1)"
while IFS='|' read -r body want; do
  got=$(bctl call "${at[@]}" Configure ay $body)
  [ "$got" = "$want" ] || { echo "Configure ay $body: '$got', not '$want'" >&2; status=1; }
done <<EOF
$configure|$response
3 1 2 3|Call failed: code 2
$("$peer" sample 13 0)|Call failed: code 2
${response#ay }|Call failed: code 4
$configure|$response
EOF
# One-way (ToogleWifi, 11) with a reply expected: none comes, and what the
# server held goes with the caller (checked as the publisher stops).
got=$(bctl --timeout=1 call "${at[@]}" ToogleWifi ay $("$peer" sample 11 0))
[ "$got" = "Call failed: Connection timed out" ] || { echo "ToogleWifi: '$got'" >&2; status=1; }
members=$(bctl introspect "${at[@]}" | tr -s ' ')
for want in ".Configure method ay ay" ".GetAssocDevStats method ay ay" ".NeedUpdate method s" \
            ".WpsStatus signal ay"; do
  grep -qF "$want" <<<"$members" || { echo "introspect lacks '$want'" >&2; status=1; }
done
kill -TERM "$server"
wait "$server" || { echo "publisher failed" >&2; status=1; }
exit $status
