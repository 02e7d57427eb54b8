#!/usr/bin/env bash
# Checks that every C++ block of README.md is a verbatim piece of a program under examples/,
# so that CI compiles and runs what the README shows. A block is announced by a marker line
#
#     <!-- examples/tour.cpp: walk -->
#     ```cpp
#     ...
#     ```
#
# and equals the lines of examples/tour.cpp between "// readme: walk" and "// readme: end",
# less the indentation of the "// readme: walk" line. Blocks taken from one file appear in
# the README in the file's order, so no block uses a name before the block that defines it.
#
#     scripts/check-readme.sh            report differences, exit 1 if there are any
#     scripts/check-readme.sh --update   rewrite the README's blocks from the files
set -euo pipefail
cd "$(dirname "$0")/.."

update=0
case "${1:-}" in
  "") ;;
  --update) update=1 ;;
  *) echo "usage: $0 [--update]" >&2; exit 2 ;;
esac

# The piece NAME of FILE, dedented; fails when the markers are missing.
piece() {
  awk -v name="$2" '
    !inside && $0 ~ "^[ \t]*// readme: " name "$" { inside = 1; match($0, /^[ \t]*/); indent = RLENGTH; found = 1; next }
    inside && $0 ~ "^[ \t]*// readme: end$" { inside = 0; exit }
    inside { print substr($0, 1 + (length($0) >= indent ? indent : length($0))) }
    END { if (!found || inside) exit 1 }' "$1"
}

# The line of FILE where the piece NAME starts.
piece_line() {
  grep -n -- "^[[:space:]]*// readme: $2\$" "$1" | head -n 1 | cut -d: -f1
}

readme=README.md
out=$(mktemp)
trap 'rm -f "$out" "$out".*' EXIT
status=0
declare -A last_line=()
line_no=0
expect_block=""
in_block=0
block_is_checked=0
while IFS= read -r line || [ -n "$line" ]; do
  line_no=$((line_no + 1))
  if [ "$in_block" -eq 1 ]; then
    if [ "$line" = '```' ]; then
      in_block=0
      if [ "$block_is_checked" -eq 1 ]; then
        if ! piece "$file" "$name" > "$out.want"; then
          echo "$readme:$line_no: no piece \"$name\" in $file" >&2
          status=1
        elif ! cmp -s "$out.want" "$out.have"; then
          if [ "$update" -eq 1 ]; then
            echo "$readme: block $file: $name updated"
          else
            echo "$readme: the block $file: $name differs from the file (< file, > README):" >&2
            diff "$out.want" "$out.have" >&2 || true
            status=1
          fi
        fi
        [ "$update" -eq 1 ] && [ -s "$out.want" ] && cat "$out.want" >> "$out.new"
      fi
      echo "$line" >> "$out.new"
    else
      if [ "$block_is_checked" -eq 1 ]; then
        printf '%s\n' "$line" >> "$out.have"
        [ "$update" -eq 1 ] || printf '%s\n' "$line" >> "$out.new"
      else
        printf '%s\n' "$line" >> "$out.new"
      fi
    fi
    continue
  fi
  printf '%s\n' "$line" >> "$out.new"
  if [[ "$line" =~ ^'<!-- '(examples/[^: ]+)': '([A-Za-z0-9_-]+)' -->'$ ]]; then
    expect_block="${BASH_REMATCH[1]}|${BASH_REMATCH[2]}"
    continue
  fi
  if [[ "$line" =~ ^'```'(cpp|c\+\+|C\+\+)$ ]]; then
    in_block=1
    : > "$out.have"
    if [ -z "$expect_block" ]; then
      echo "$readme:$line_no: a C++ block without a <!-- examples/FILE: NAME --> marker line" >&2
      status=1
      block_is_checked=0
    else
      file="${expect_block%%|*}"
      name="${expect_block#*|}"
      block_is_checked=1
      start=$(piece_line "$file" "$name" 2>/dev/null || true)
      if [ -n "$start" ] && [ -n "${last_line[$file]:-}" ] && [ "$start" -lt "${last_line[$file]}" ]; then
        echo "$readme:$line_no: the piece \"$name\" comes before an earlier block in $file" >&2
        status=1
      fi
      [ -n "$start" ] && last_line[$file]=$start
    fi
    expect_block=""
    continue
  fi
  [ -n "$line" ] && expect_block=""
done < "$readme"

if [ "$update" -eq 1 ]; then
  cp "$out.new" "$readme"
elif [ "$status" -eq 0 ]; then
  echo "README.md: every C++ block is a piece of a program under examples/"
fi
exit "$status"
