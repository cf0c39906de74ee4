#!/usr/bin/env bash
# Installs the Debian packages of scripts/packages.txt that are missing (one apt-get update,
# only when something is missing). Needs root or sudo.
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
mapfile -t wanted < <(sed -e 's/#.*//' -e '/^\s*$/d' "$here/packages.txt")
missing=()
for pkg in "${wanted[@]}"; do
  status="$(dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null || true)"
  [[ "$status" == "install ok installed" ]] || missing+=("$pkg")
done
if ((${#missing[@]})); then
  sudo_cmd=()
  [[ $(id -u) -eq 0 ]] || sudo_cmd=(sudo)
  echo "Installing: ${missing[*]}"
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
fi
