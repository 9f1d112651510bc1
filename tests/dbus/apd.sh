#!/usr/bin/env bash
# wifiap-apd on a private bus: a client's Configure and GetAssocDevStats are
# answered and logged, and SIGTERM stops it with status 0.
set -u
apd=$1 peer=$2 conf=$3
. "$(dirname "$0")/bus.sh"

# A long interval keeps the two stations there while the client asks.
start apd ready "$apd" --stderr --stations 2 --interval 600000 || exit 1
server=$last
"$peer" apd-client 2 || bad "apd-client failed"
holds "$(cat "$work/apd.out")" "command Configure from ui/web" "published EncryptionStatus" \
  "command GetAssocDevStats from ui/web"
stop wifiap-apd
exit $status
