# Sourced by the D-Bus tests: a private bus from the project's configuration
# ($conf), its address exported; $work a scratch folder. Whatever is in $pids
# (the bus first) is killed, and $work removed, on any exit.
work=$(mktemp -d)
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill -9 "$p" 2>/dev/null; done
  wait 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

until_in() {  # until_in FILE TEXT: waits up to 10 s for TEXT in FILE
  for _ in $(seq 100); do grep -q "$2" "$1" 2>/dev/null && return 0; sleep 0.1; done
  echo "timed out waiting for '$2' in $1" >&2; return 1
}

dbus-daemon --config-file="$conf" --nofork --print-address=3 3>"$work/address" &
pids+=($!)
until_in "$work/address" unix: || exit 1
DBUS_SESSION_BUS_ADDRESS=$(head -n1 "$work/address")
export DBUS_SESSION_BUS_ADDRESS
