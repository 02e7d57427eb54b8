#!/usr/bin/env bash
# Shows that every check of every fuzz target can fail: each check is turned around in
# turn (KNMIME_FUZZ_BREAK, see FuzzCheck.h) and the target is run once over its seed
# corpus, which must then stop with that check's report. Usage: fuzz/selftest.sh BUILD_DIR
# (the folder holding the *_fuzz programs, e.g. build/fuzz/fuzz).
set -uo pipefail
cd "$(dirname "$0")/.."
bin=${1:-build/fuzz/fuzz}
status=0
for source in fuzz/*_fuzz.cpp; do
  name=$(basename "$source" .cpp)
  corpus="fuzz/corpus/${name%_fuzz}"
  while read -r check; do
    out=$(KNMIME_FUZZ_BREAK="$check" "$bin/$name" "$corpus"/* 2>&1)
    if grep -qF "CHECK FAILED: $check" <<<"$out"; then
      echo "ok    $name: $check"
    else
      echo "NEVER $name: $check (not reached by the seed corpus)"
      status=1
    fi
  done < <(grep -o 'check("[^"]*"' "$source" | sed 's/check("//; s/"$//' | sort -u)
done
exit $status
