#!/usr/bin/env bash
# Installs what building and testing need on Debian 12, then the npm dev dependencies.
#   scripts/setup.sh              native build, tests, sanitizer runs
#   scripts/setup.sh --windows    also the Windows cross build and Wine (npm run test:win)
# Idempotent and quick when everything is there: apt runs only for missing packages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

windows=0
for arg in "$@"; do
  case $arg in
    --windows) windows=1 ;;
    *) echo "usage: $0 [--windows]" >&2; exit 2 ;;
  esac
done

packages=(
  cmake ninja-build g++          # build (CMakePresets.json uses Ninja)
  rapidjson-dev                  # JSON in the simulated engine and the addon
  libstb-dev                     # PNG encoding (stb_image_write)
  zlib1g-dev                     # PNG compression (zlib behind stb_image_write)
  libturbojpeg0-dev              # JPEG encoding on Linux
  libyuv-dev                     # optional pixel conversion, used when present
  googletest libgtest-dev        # native tests
)
if ((windows)); then
  # The posix thread variant: the win32 one has no std::mutex/std::thread.
  packages+=(g++-mingw-w64-x86-64-posix wine64 libz-mingw-w64-dev)
fi
command -v node >/dev/null || packages+=(nodejs)
command -v npm >/dev/null || packages+=(npm)

missing=()
for p in "${packages[@]}"; do
  if [[ $(dpkg-query -W -f='${Status}' "$p" 2>/dev/null) != "install ok installed" ]]; then
    missing+=("$p")
  fi
done

if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}"
  sudo=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null || { echo "setup: need root (or sudo) to install packages" >&2; exit 1; }
    sudo=(sudo)
  fi
  export DEBIAN_FRONTEND=noninteractive
  "${sudo[@]}" apt-get update -qq
  "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
else
  echo "setup: Debian packages present"
fi

# npm dev dependencies (Node-API headers, node-addon-api, image decoders for tests).
# Skipped when node_modules already matches the lock file.
stamp=node_modules/.package-lock.json
if [[ -f $stamp && $stamp -nt package-lock.json && $stamp -nt package.json ]]; then
  echo "setup: node_modules up to date"
else
  echo "setup: npm ci"
  npm ci --no-audit --no-fund
fi
echo "setup: done"
