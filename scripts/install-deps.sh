#!/usr/bin/env bash
# Installs the Debian packages the build needs, only those that are missing;
# with package names as arguments, those instead.
#   scripts/install-deps.sh [package ...]
set -euo pipefail
# clang and its compiler-rt (libclang-rt-dev) build the fuzz targets.
packages=(g++ cmake make qt6-base-dev qt6-svg-dev libgl-dev libgtest-dev libgmock-dev
          libbenchmark-dev fonts-dejavu-core clang libclang-rt-dev)
[ $# -eq 0 ] || packages=("$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO=sudo
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
