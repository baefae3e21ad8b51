#!/usr/bin/env bash
# Installs the Debian packages the project needs that are missing (as root), or says which are
# missing and stops (as another user).
set -euo pipefail

packages=(cmake make g++ git libgtest-dev libgmock-dev libbenchmark-dev libsqlite3-dev
          g++-mingw-w64-x86-64 binutils-mingw-w64-x86-64)
[ "$#" -gt 0 ] && packages+=("$@")

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

if [ "$(id -u)" -ne 0 ]; then
  echo "missing Debian packages: ${missing[*]}" >&2
  echo "install them as root: apt-get install ${missing[*]}" >&2
  exit 1
fi
echo "installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
