#!/usr/bin/env bash
# Installs what the builds and tests need on Debian 12, skipping what is there.
set -euo pipefail
pkgs=(cmake ninja-build g++ googletest libgtest-dev libgmock-dev libbenchmark-dev binutils
      g++-i686-linux-gnu g++-mips-linux-gnu g++-arm-linux-gnueabihf g++-arm-linux-gnueabi
      qemu-user abigail-tools clang libclang-rt-14-dev tshark
      pkg-config libsystemd-dev dbus-daemon dbus-bin systemd libjson-c-dev libedit-dev)
missing=()
for p in "${pkgs[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
  if ! command -v apt-get >/dev/null || [ "$(id -u)" -ne 0 ]; then
    echo "missing packages: ${missing[*]}" >&2
    echo "install them as root with apt-get (Debian 12), or run this script as root" >&2
    exit 1
  fi
  echo "installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
