#!/usr/bin/env bash
# Large bodies between two stand-ins go as a sealed memfd, while a plain
# caller (busctl) still gets `ay`; hostile request fds are refused. The bus
# and every process started here stop on any exit.
set -u
prog=$1 conf=$2
. "$(dirname "$0")/bus.sh"
command -v busctl >/dev/null || { echo "busctl missing (Debian package systemd)" >&2; exit 1; }
bctl() { busctl --address="$DBUS_SESSION_BUS_ADDRESS" --timeout=5 "$@" 2>&1; }

"$prog" server >"$work/server.out" & server=$!
pids+=($server)
until_in "$work/server.out" ready || exit 1
# The stand-in's calls as a peer: what marks it to the server as a stand-in.
bctl monitor --match="type='method_call',interface='org.wifiap.IntfWifiAp1.Peer'" >"$work/monitor" &
pids+=($!)
until_in "$work/monitor" Monitoring || exit 1

status=0
"$prog" standin >"$work/standin.out" || { echo "standin failed" >&2; status=1; }
until_in "$work/monitor" "Member=GetAssocDevStats" || { echo "the stand-in did not call as a peer" >&2; status=1; }
"$prog" raw || { echo "raw failed" >&2; status=1; }
length=$(sed -n 1p "$work/standin.out") request=$(sed -n 2p "$work/standin.out")
got=$(bctl call org.wifiap._ap._apd /org/wifiap/ap/apd org.wifiap.IntfWifiAp1 GetAssocDevStats ay $request | head -c 40)
[[ "$got" == "ay $length "* ]] || { echo "busctl got '$got...', not ay $length" >&2; status=1; }
kill -TERM "$server"
wait "$server" || { echo "server failed" >&2; status=1; }
exit $status
