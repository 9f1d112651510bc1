# Sourced by the D-Bus tests: a private bus from the project's configuration
# ($conf), its address exported; $work a scratch folder; $status 1 once `bad`
# or a wait failed. On any exit whatever is in $pids (the bus first) is killed,
# after a failure what the background processes printed shown, $work removed.
work=$(mktemp -d)
pids=() status=0
cleanup() {
  local rc=$?
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  wait 2>/dev/null
  [ $rc = 0 ] || tail -n 20 "$work"/*.out >&2 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
bad() { echo "FAIL: $*" >&2; status=1; }
command -v busctl >/dev/null || { echo "busctl missing (Debian package systemd)" >&2; exit 1; }
bctl() { busctl --address="$DBUS_SESSION_BUS_ADDRESS" --timeout=5 "$@" 2>&1; }
until_in() {  # until_in FILE TEXT: waits up to 10 s for TEXT in FILE
  for _ in $(seq 100); do grep -q "$2" "$1" 2>/dev/null && return 0; sleep 0.1; done
  bad "timed out waiting for '$2' in $1"; return 1
}
holds() {  # holds TEXT PATTERN...: each fixed PATTERN is in TEXT
  local t=$1; shift
  for p; do grep -qF -- "$p" <<<"$t" || bad "no '$p' in: ${t:0:2000}"; done
}
start() {  # start NAME TEXT CMD...: CMD in the background ($last), its output in $work/NAME.out, until TEXT
  local name=$1 text=$2; shift 2
  "$@" >"$work/$name.out" 2>&1 & last=$!
  pids+=($last)
  until_in "$work/$name.out" "$text"
}
# serve ROLE [ARG]: $peer's ROLE as $server, once its name is on the bus;
# stop WHAT: SIGTERM to $server, which exits 0 within 5 s.
serve() { start "$1" ready "$peer" "$@"; local rc=$?; server=$last; return $rc; }
stop() {
  kill -TERM "$server"
  for _ in $(seq 50); do kill -0 "$server" 2>/dev/null || break; sleep 0.1; done
  kill -9 "$server" 2>/dev/null && bad "$1 still ran 5 s after SIGTERM"
  wait "$server" || bad "$1 exited $?: failed or leaked"
}

dbus-daemon --config-file="$conf" --nofork --print-address=3 3>"$work/address" &
pids+=($!)
until_in "$work/address" unix: || exit 1
DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$work/address")
export DBUS_SESSION_BUS_ADDRESS
