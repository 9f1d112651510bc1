#!/usr/bin/env bash
# The demo across processes: builds the optimised x86-64 target, then on a
# private D-Bus bus runs wifiap-apd and the two clients as processes of
# their own (tools/demo/across.sh), shows what each saw, and checks that
# they sent the bodies the in-process demo sends. Argument: stations (4).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j"$(nproc)" --target wifiap-demo wifiap-apd IntfWifiap
tools=build/release/tools out=build/release/demo-bus stations=${1:-4}
tools/demo/across.sh "$tools" tests/dbus/session.conf "$out" "$stations" 2>"$out.err" ||
  { cat "$out.err" >&2; exit 1; }

part() { printf '\n######## %s\n' "$1"; }
part "ui/web, a process of its own"
sed '/waiting for the other client/q' "$out/web.out"
part "ui/cli, a second process, while ui/web waits"
cat "$out/cli.out"
part "ui/web again"
sed '1,/waiting for the other client/d' "$out/web.out"
part "ap/apd (wifiap-apd --story), its log"
cat "$out/apd.out"

"$tools/wifiap-demo" --stations "$stations" --capture "$out/in-process.cap" >/dev/null
bodies() { grep -h '^[0-9]' "$@" | cut -d' ' -f2- | sort; }
part "what crossed"
if diff -q <(bodies "$out"/{apd,web,cli}.cap) <(bodies "$out/in-process.cap") >/dev/null; then
  echo "the three processes sent $(bodies "$out"/{apd,web,cli}.cap | wc -l) bodies, the in-process demo's"
else
  echo "!! the bodies sent differ from the in-process demo's ($out/in-process.cap)"; exit 1
fi
echo "the whole bus, as busctl captured it: wireshark $out/bus.pcap"
