#!/usr/bin/env bash
# The demo across three processes (wifiap-apd and two clients on a private
# bus): the bodies they send are those of the in-process demo's committed
# capture, no process finds fault, and the bus capture shows every message.
set -u
tools=$1 conf=$2 expected=$3 tshark=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
fail() { echo "$*" >&2; status=1; }

"$(dirname "$0")/../../tools/demo/across.sh" "$tools" "$conf" "$work" 2 || fail "across.sh failed"
bodies() { grep -h '^[0-9]' "$@" | cut -d' ' -f2- | sort; }
diff <(bodies "$work"/*.cap) <(bodies "$expected") >"$work/diff" ||
  fail "the bodies sent differ from $expected:" "$(head -c 2000 "$work/diff")"
grep -H '!!' "$work"/*.out >&2 && fail "a process found fault"

# Every command the server was sent and everything it published, as D-Bus
# members in the capture Wireshark opens.
names=$(sed -n 's/^wifiap-apd: \(command\|published\) \([A-Za-z]*\).*/\2/p' "$work/apd.out" | sort -u)
[ "$(wc -l <<<"$names")" = 20 ] || fail "the server saw $(wc -l <<<"$names") messages, not 20"
members=$("$tshark" -r "$work/bus.pcap" -T fields -e dbus.member 2>"$work/tshark.err" | sort -u)
missing=$(comm -23 <(echo "$names") <(echo "$members"))
[ -z "$missing" ] || fail "not in the bus capture:" $missing
exit $status
