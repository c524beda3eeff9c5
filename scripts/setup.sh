#!/usr/bin/env bash
# Installs what the build and the tests need on a fresh Debian 12
# machine, quietly and only what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  build-essential cmake git pkg-config
  g++ clang-14 libclang-rt-14-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libwbxml2-dev libssl-dev libexpat1-dev libwbxml2-utils
  default-jdk-headless junit4 proguard-cli libjetbrains-annotations-java
  qemu-user g++-aarch64-linux-gnu
  binutils
  openjdk-17-jre-headless:arm64
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  # The arm64 build runs its JVM tests in an aarch64 VM under qemu-user.
  dpkg --print-foreign-architectures | grep -qx arm64 || $SUDO dpkg --add-architecture arm64
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
