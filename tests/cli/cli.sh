#!/usr/bin/env bash
# wifiap-cli against wifiap-apd on a private bus: every command called with
# its fields by name and as JSON, both outputs checked; listen's lines through
# `head`, and again from a server that comes back; monitor's decoded bodies
# and its pcapng in tshark with the dissector; the prompt; every exit status.
set -u
cli=$1 apd=$2 tshark=$3 lua=$4 conf=$5
. "$(dirname "$0")/../dbus/bus.sh"

# `expect STATUS PATTERN -- ARGS`: wifiap-cli ARGS exits STATUS, and its output
# (standard output and error) holds PATTERN ("" for none: then it is empty).
expect() {
  local want=$1 pattern=$2; shift 3
  local got; out=$("$cli" "$@" 2>"$work/err") ; got=$?
  out+=$(cat "$work/err")
  [ "$got" = "$want" ] || bad "wifiap-cli $* exited $got, not $want: $out"
  if [ -z "$pattern" ]; then [ -z "$out" ] || bad "wifiap-cli $* printed: $out"; else holds "$out" "$pattern"; fi
}

start_apd() { start apd ready "$apd" --stderr --stations 2 --interval 500; server=$last; }
start_apd
expect 0 "" -- -t 10 wait-for ap/apd

# monitor sees everything from now on: it is up once it has seen a body.
"$cli" monitor --capture "$work/bus.pcapng" >"$work/monitor.txt" 2>&1 & monitor=$!
pids+=($monitor)
for _ in $(seq 50); do
  "$cli" call GeneratePinCodeWPS >/dev/null; grep -q GeneratePinCodeWPS "$work/monitor.txt" && break
  sleep 0.1
done

expect 0 "ap/apd" -- list
expect 0 "value1: u32" -- list -v
expect 0 '"name": "GetAssocDevStats"' -- --json list -v

# Every command, fields by name then the same as JSON: what the text shows,
# what the JSON shows ("" for a one-way command: nothing; the server logs it).
while IFS='|' read -r cmd fields json text jtext; do
  [ -n "$cmd" ] || continue
  read -ra args <<<"$fields"
  expect 0 "$text" -- call "$cmd" "${args[@]}"
  expect 0 "$jtext" -- --json call "$cmd" "$json"
  if [ -z "$text" ]; then
    until_in "$work/apd.out" "command $cmd from cli/"
  fi
done <<'ROWS'
Create|text1=MySSID text2=secretpass|{"text1": "MySSID", "text2": "secretpass"}|3 text1 = "wlan0"|"text1": "wlan0"
Configure|value1=36 value2=3|{"value1": 36, "value2": 3}|3 result = 0|"result": 0
GetAssocDevStats||{}|assocDevs[0]: assocDevInfoFull|"assocDevs": [
SetBridgeAndIps|bridge=br0 ips=192.168.1.1|{"bridge": "br0", "ips": "192.168.1.1"}||
SetIps|ips=192.168.1.2|{"ips": "192.168.1.2"}||
Ssidinfo|text=MySSID|{"text": "MySSID"}|3 result = 0|"result": 0
StartWPS|value=120|{"value": 120}|3 value = 120|"value": 120
StartPhysicalWPS|value=60|{"value": 60}|wpsInfoOut:|"value": 
ToogleWps||{}||
StopWps||{}||
GeneratePinCodeWPS||{}|3 result = |"result": 
ToogleWifi||{}||
SendAccountingRequest|value1=1 value2=2 macAddress=02:5a:00:00:00:01 text1=a text2=b text3=c text4=d|{"value1": 1, "value2": 2, "macAddress": "02:5a:00:00:00:01", "text1": "a", "text2": "b", "text3": "c", "text4": "d"}|5 value2 = |"value2": 
ForceApplyMacFilterChange||{}||
Stop||{}|3 result = |"result": 
ROWS
# JSON on standard input, nested fields by path, a text cut as the library cuts it.
out=$(echo '{"value1": 1, "value2": 2}' | "$cli" --json call Configure -) && grep -qF '"result"' <<<"$out" ||
  bad "JSON on standard input: $out"
expect 0 "note: text cut to 79 bytes" -- call Ssidinfo "text=$(printf 'x%.0s' $(seq 100))"

# Each exit status: usage, refused (before sending), no such user, timeout.
expect 64 'no command "frobnicate"' -- frobnicate
expect 64 'no command "Configur"' -- call Configur
expect 64 'no notification "Nope"' -- listen Nope
expect 65 'no field "value3" in conf; its fields: value1 value2' -- call Configure value3=1
expect 65 'value1: 4294967296 does not fit a u32' -- call Configure value1=4294967296
expect 65 'not JSON' -- call Configure '{"value1": '
expect 65 'value: "ten" is not a u32' -- call StartWPS value=ten
expect 69 'no user ap/nobody on the bus' -- call --to ap/nobody Stop
expect 75 'ap/nobody is not on the bus' -- -t 1 wait-for ap/nobody
expect 1 "cannot write $work/none/x.pcapng" -- monitor --capture "$work/none/x.pcapng"
"$cli" wait-for ap/nobody & waiter=$!
pids+=($waiter)
sleep 1; kill -INT "$waiter"; wait "$waiter"; rc=$?
[ "$rc" = 130 ] || bad "wait-for interrupted exited $rc, not 130"

# The server's notifications, one JSON object a line, through head: the
# current state first (need-update), then what the air brings.
lines=$(timeout 20 "$cli" --json listen | head -n 6); rc=$?
[ "$(grep -c '^{"notification": *"[A-Za-z]*", *"from": *"ap/apd", *"payload": *{.*}}$' <<<"$lines")" = 6 ] ||
  bad "listen | head -n 6 (status $rc): $lines"
holds "$lines" '"EncryptionStatus"' '"WpsStatus"' '"AssocDevActiveListChanged"'
expect 0 "DisassocEvent from ap/apd: macAddress=" -- -t 4 listen DisassocEvent

# A server that comes back is asked for its state again.
"$cli" -t 8 listen EncryptionStatus >"$work/again.txt" 2>&1 & listener=$!
pids+=($listener)
until_in "$work/again.txt" EncryptionStatus
stop wifiap-apd
start_apd
wait "$listener" || bad "listen across a restart exited $?"
[ "$(grep -c '^EncryptionStatus from ap/apd: encStatus=' "$work/again.txt")" -ge 2 ] ||
  bad "no EncryptionStatus from the server that came back: $(cat "$work/again.txt")"

# The prompt, from a pipe: the same commands, line by line.
out=$(printf 'call Configure value1=36 value2=3\n--json call Stop\nquit\n' | HOME=$work "$cli" 2>&1)
grep -qF '3 result = ' <<<"$out" && grep -qF '"result": ' <<<"$out" || bad "the prompt: $out"

# monitor, stopped with ^C: every command decoded, and the capture in tshark.
kill -INT "$monitor"; wait "$monitor"; rc=$?
[ "$rc" = 0 ] || bad "monitor exited $rc"
holds "$(cat "$work/monitor.txt")" "Configure request (IntfWifiApCmd 0)" "Configure response (IntfWifiApCmd 0)" \
  "SetIps request (IntfWifiApCmd 2)" "GetAssocDevStats response (IntfWifiApCmd 13)" \
  "EncryptionStatus notification (IntfWifiApNtfy 3)" '3 ips = "192.168.1.2"'
fields=$("$tshark" -n -X "lua_script:$lua" -r "$work/bus.pcapng" -T fields -E separator=, -e wifiap.message \
         -e wifiap.sender 2>"$work/tshark.err"); rc=$?
full=$("$tshark" -n -X "lua_script:$lua" -r "$work/bus.pcapng" -V 2>>"$work/tshark.err")
grep -v 'Running as user' "$work/tshark.err" | grep -q . && bad "tshark: $(cat "$work/tshark.err")"
[ "$rc" = 0 ] || bad "tshark exited $rc"
grep -Eq 'Lua Error|Malformed Packet|Dissector bug' <<<"$full" && bad "tshark: a malformed packet"
for cmd in Create Configure SetBridgeAndIps SetIps Ssidinfo Stop StartWPS StartPhysicalWPS ToogleWps \
           StopWps GeneratePinCodeWPS ToogleWifi SendAccountingRequest GetAssocDevStats \
           ForceApplyMacFilterChange EncryptionStatus; do
  grep -q "^$cmd [a-z]*," <<<"$fields" || bad "tshark: no $cmd packet"
done
[ "$(grep -c . <<<"$fields")" = "$(grep -c '^#' "$work/monitor.txt")" ] ||
  bad "tshark shows $(grep -c . <<<"$fields") packets, monitor printed $(grep -c '^#' "$work/monitor.txt")"

exit $status
