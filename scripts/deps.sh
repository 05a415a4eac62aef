#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need, when any is missing.
set -euo pipefail

packages=(
  cmake ninja-build g++ ccache pkg-config dpkg-dev file
  qt6-base-dev qt6-base-dev-tools qt6-declarative-dev qt6-tools-dev qt6-tools-dev-tools
  qt6-l10n-tools libqt6opengl6-dev
  libcurl4-openssl-dev libgif-dev libgl-dev libglu1-mesa-dev freeglut3-dev
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth fonts-dejavu-core libgl1-mesa-dri libglx-mesa0
  python3 python3-pyftpdlib python3-pil curl vsftpd lighttpd
  clang libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing missing Debian packages: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "need root or sudo to install: ${missing[*]}" >&2; exit 1; }
  sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
