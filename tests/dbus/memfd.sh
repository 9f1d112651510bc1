#!/usr/bin/env bash
# Large bodies between two stand-ins go as a sealed memfd, while a plain
# caller still gets `ay`; hostile request fds are refused (the peer's memfd
# role). What marks a stand-in to the server: its calls as a peer.
set -u
peer=$1 conf=$2
. "$(dirname "$0")/bus.sh"

serve publisher || exit 1
start monitor Monitoring busctl --address="$DBUS_SESSION_BUS_ADDRESS" monitor \
  --match="type='method_call',interface='org.wifiap.IntfWifiAp1.Peer',sender='org.wifiap._ui._web'" || exit 1
"$peer" memfd || bad "memfd failed"
until_in "$work/monitor.out" "Member=GetAssocDevStats" || bad "the stand-in did not call as a peer"
stop publisher
exit $status
