#!/usr/bin/env bash
# Installs, from Debian's packages, whatever of the build's needs this machine lacks.
# Safe to run again: packages already present are left alone.
set -euo pipefail

needed=()
have_cmd() { command -v "$1" >/dev/null 2>&1; }
have_pkg() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }

have_cmd cmake || needed+=(cmake)
have_cmd ninja || needed+=(ninja-build)
have_cmd g++ || needed+=(g++)
have_cmd clang++ || needed+=(clang)
have_pkg libclang-rt-14-dev || have_pkg libclang-rt-dev || needed+=(libclang-rt-dev)
have_pkg libgtest-dev || needed+=(libgtest-dev)
have_pkg libgmock-dev || needed+=(libgmock-dev)
have_pkg libbenchmark-dev || needed+=(libbenchmark-dev)

if [ ${#needed[@]} -gt 0 ]; then
  echo "installing: ${needed[*]}"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${needed[@]}"
fi
