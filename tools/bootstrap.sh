#!/usr/bin/env bash
# Installs the Debian packages the build, the viewer and the tests need, and only those missing.
# Quiet and quick when everything is present; safe to run any number of times.
#   tools/bootstrap.sh [EXTRA-PACKAGE...]   also the given packages (CI adds clang-format)
set -euo pipefail

# Real package names only: dpkg never reports a virtual one as installed, so it would be asked for
# on every run.
packages=(
  cmake ninja-build g++ make pkg-config
  qt6-base-dev qt6-svg-dev libgl-dev
  libgtest-dev googletest libgmock-dev libbenchmark-dev
  xvfb xauth xdotool
  poppler-utils
  "$@"
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "bootstrap: installing ${missing[*]}"
sudo_cmd=()
[ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
