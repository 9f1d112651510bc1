#!/usr/bin/env bash
# Installs what is missing, then builds every target and runs every test:
# x86-64 with sanitizers, x86-64 optimised, i686, and big-endian MIPS, ARMv7
# hard-float and ARMv5 soft-float under qemu. WIFIAP_I686_RUNNER=loader|qemu
# forces how the i686 tests run (by default: as this machine allows).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/check-machine.sh
presets=(${PRESETS:-asan release i686 mips armhf armel})
total=0
for p in "${presets[@]}"; do
  echo "=== $p"
  cmake --preset "$p" ${WIFIAP_I686_RUNNER:+-DWIFIAP_I686_RUNNER=$WIFIAP_I686_RUNNER} >/dev/null
  [ -f "build/$p/runner.txt" ] && echo "runs through $(cat "build/$p/runner.txt")"
  cmake --build --preset "$p" -j"$(nproc)"
  log="build/$p/ctest.log"
  if ! ctest --preset "$p" -j"$(nproc)" >"$log" 2>&1; then
    grep -E "Failed|\*\*\*|tests passed" "$log" | tail -n 40
    ctest --preset "$p" --rerun-failed --output-on-failure 2>&1 | tail -n 80
    exit 1
  fi
  tail -n 3 "$log"
  n=$(sed -n 's/.*tests passed, 0 tests failed out of \([0-9]*\).*/\1/p' "$log")
  total=$((total + ${n:-0}))
done
# A short fuzzing run of every message's body reader (clang, libFuzzer, ASan).
if [ "${FUZZ_SECONDS:-30}" -gt 0 ]; then
  echo "=== fuzz (${FUZZ_SECONDS:-30} s)"
  cmake --preset fuzz >/dev/null
  cmake --build --preset fuzz -j"$(nproc)" --target body_fuzz
  mkdir -p build/fuzz/corpus
  # New inputs go to build/fuzz/corpus; the committed seeds are read, not written.
  build/fuzz/fuzz/body_fuzz -artifact_prefix=build/fuzz/ -max_total_time="${FUZZ_SECONDS:-30}" build/fuzz/corpus fuzz/corpus \
    >build/fuzz/fuzz.log 2>&1 || { tail -n 40 build/fuzz/fuzz.log; exit 1; }
  tail -n 1 build/fuzz/fuzz.log
fi
echo "all targets passed: ${presets[*]}"
echo "$total passed, 0 failed"
