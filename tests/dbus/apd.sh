#!/usr/bin/env bash
# wifiap-apd on a private bus: a client's Configure and GetAssocDevStats are
# answered and logged, and SIGTERM stops it within 2 s with status 0.
set -u
apd=$1 peer=$2 conf=$3
. "$(dirname "$0")/bus.sh"

# A long interval keeps the two stations there while the client asks.
"$apd" --stderr --stations 2 --interval 600000 2>"$work/apd.err" & server=$!
pids+=($server)
until_in "$work/apd.err" ready || exit 1

status=0
"$peer" apd-client 2 || { echo "apd-client failed" >&2; status=1; }
for line in "command Configure from ui/web" "published EncryptionStatus" \
            "command GetAssocDevStats from ui/web"; do
  grep -q "$line" "$work/apd.err" || { echo "not logged: $line" >&2; status=1; }
done

(sleep 2; kill -9 "$server" 2>/dev/null) & dog=$!
pids+=($dog)
kill -TERM "$server"
wait "$server"; rc=$?
kill "$dog" 2>/dev/null
case $rc in
  0) ;;
  137) echo "wifiap-apd still ran 2 s after SIGTERM" >&2; status=1 ;;
  *) echo "wifiap-apd exited $rc" >&2; status=1 ;;
esac
[ $status = 0 ] || cat "$work/apd.err" >&2
exit $status
