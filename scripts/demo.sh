#!/usr/bin/env bash
# Builds the optimised x86-64 target and runs the demo host; arguments go to the demo.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j"$(nproc)" --target wifiap-demo IntfWifiap
exec build/release/tools/wifiap-demo "$@"
