#!/usr/bin/env bash
# Installs every Debian package that building, running and testing Marvanesse+
# needs. Safe to run again: packages already present are left as they are.
set -euo pipefail

packages=(
  build-essential g++ cmake ninja-build pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  libsdl2-dev libgl-dev libegl-dev libgl1-mesa-dri libegl-mesa0
  libfreetype-dev libjpeg62-turbo-dev libstb-dev
  fonts-dejavu-core fonts-liberation2 fonts-ipafont-gothic
  xvfb xauth x11-apps python3 clang-format
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all packages present"
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then sudo=""; else sudo="sudo"; fi
echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -q
$sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
