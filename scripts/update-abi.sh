#!/usr/bin/env bash
# Rewrites the committed ABI baselines (abi/*.abi) from fresh i686 and MIPS
# builds; run it when an ABI change is intended, and review the diff.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
for p in i686 mips; do
  cmake --preset "$p" >/dev/null
  cmake --build --preset "$p" -j"$(nproc)" --target abi-baseline
done
git status --short -- abi
