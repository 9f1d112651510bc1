#!/usr/bin/env bash
# What the tests need of this machine beyond its packages, checked before the
# long builds so that a machine that cannot run them says why at once.
set -euo pipefail
cd "$(dirname "$0")/.."
fail() { echo "machine check: $*" >&2; exit 1; }

# Every preset's build tree: about 2 GiB together.
free_kib=$(df -Pk . | awk 'NR == 2 { print $4 }')
((free_kib > 3 * 1024 * 1024)) || fail "less than 3 GiB free under $(pwd)"

# Sanitized programs need their shadow memory mapped where the kernel allows
# it, and LeakSanitizer needs ptrace (some containers forbid it).
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
printf 'int main() { return 0; }\n' >"$tmp/a.cpp"
g++ -fsanitize=address,undefined "$tmp/a.cpp" -o "$tmp/a"
if ! out=$("$tmp/a" 2>&1); then
  echo "$out" >&2
  fail "a program built with AddressSanitizer does not run here: if it says 'shadow memory', " \
       "lower vm.mmap_rnd_bits to 28 (sysctl); if LeakSanitizer failed, allow ptrace"
fi

# 32-bit x86 programs: either way works, the build chooses (cmake/runner.cmake).
if /usr/i686-linux-gnu/lib/ld-linux.so.2 --version >/dev/null 2>&1; then
  echo "machine check: this kernel runs 32-bit x86 programs: i686 tests run through the loader"
else
  echo "machine check: this kernel does not run 32-bit x86 programs: i686 tests run under qemu-i386"
fi
