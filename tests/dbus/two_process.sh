#!/usr/bin/env bash
# A server killed with a request in flight, then one called by a plain client
# (busctl). Every message between processes: demo.sh; a publisher restarted
# under a subscriber: faults.sh.
set -u
peer=$1 conf=$2
. "$(dirname "$0")/bus.sh"

serve stalled || exit 1
"$peer" fault-client & client=$!
pids+=($client)
until_in "$work/stalled.out" inflight && kill -9 "$server"
wait "$client" || bad "fault-client failed"

serve publisher || exit 1
at=(org.wifiap._ap._apd /org/wifiap/ap/apd org.wifiap.IntfWifiAp1)
# Bodies of Configure (row 0) and GetAssocDevStats (13); 2 and 4 are the
# library's header and payload refusals. The server still serves after them.
configure=$("$peer" sample 0 0) response="ay $("$peer" sample 0 1)"
while IFS='|' read -r body want; do
  got=$(bctl call "${at[@]}" Configure ay $body)
  [ "$got" = "$want" ] || bad "Configure ay $body: '$got', not '$want'"
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
[ "$got" = "Call failed: Connection timed out" ] || bad "ToogleWifi: '$got'"
holds "$(bctl introspect "${at[@]}" | tr -s ' ')" ".Configure method ay ay" ".GetAssocDevStats method ay ay" \
  ".NeedUpdate method s" ".WpsStatus signal ay"
stop publisher
exit $status
