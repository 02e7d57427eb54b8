#!/usr/bin/env bash
# Installs, from Debian's packages, whatever of the build's needs this machine lacks.
# Safe to run again: packages already present are left alone.
#
#     scripts/install-deps.sh                  the build, tests, benchmarks, fuzzers and docs
#     scripts/install-deps.sh --library-only   only what building the library needs
#     scripts/install-deps.sh --peers          also the peer MIME libraries of bench/peer
set -euo pipefail

peers=0
library_only=0
for arg in "$@"; do
  case "$arg" in
    --peers) peers=1 ;;
    --library-only) library_only=1 ;;
    *) echo "usage: $0 [--library-only | --peers]" >&2; exit 2 ;;
  esac
done

needed=()
have_cmd() { command -v "$1" >/dev/null 2>&1; }
have_pkg() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }

have_cmd cmake || needed+=(cmake)
have_cmd ninja || needed+=(ninja-build)
have_cmd g++ || needed+=(g++)
if [ "$library_only" -eq 0 ]; then
  have_cmd clang++ || needed+=(clang)
  have_pkg libclang-rt-14-dev || have_pkg libclang-rt-dev || needed+=(libclang-rt-dev)
  have_pkg libgtest-dev || needed+=(libgtest-dev)
  have_pkg libgmock-dev || needed+=(libgmock-dev)
  have_pkg libbenchmark-dev || needed+=(libbenchmark-dev)
  have_cmd pkg-config || needed+=(pkg-config)
  have_cmd doxygen || needed+=(doxygen)
fi
if [ "$peers" -eq 1 ]; then
  have_pkg libgmime-3.0-dev || needed+=(libgmime-3.0-dev)
  have_pkg libmimetic-dev || needed+=(libmimetic-dev)
  have_pkg libvmime-dev || needed+=(libvmime-dev)
fi

if [ ${#needed[@]} -gt 0 ]; then
  echo "installing: ${needed[*]}"
  sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${needed[@]}"
fi
