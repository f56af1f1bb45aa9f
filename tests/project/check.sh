# shellcheck shell=bash
# Sourced by the tests of this folder: a scratch folder, checks that say what was wrong, and the verdict at the end.
set -uo pipefail

# shellcheck disable=SC2034  # for the tests
source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
checks=0
failures=0

expect_equal() { # expect_equal WHAT EXPECTED ACTUAL
  checks=$((checks + 1))
  if [[ $2 != "$3" ]]; then
    printf 'FAILED: %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
    failures=$((failures + 1))
  fi
}

expect_holds() { # expect_holds WHAT NEEDLE TEXT
  checks=$((checks + 1))
  if [[ $3 != *"$2"* ]]; then
    printf 'FAILED: %s\n  expected to find: %s\n  in: %s\n' "$1" "$2" "$3"
    failures=$((failures + 1))
  fi
}

# stand_in FILE BODY: puts a script in the place of a program.
stand_in() {
  mkdir -p "$(dirname "$1")"
  printf '#!%s\n%s\n' "$BASH" "$2" >"$1"
  chmod +x "$1"
}

verdict() {
  echo "$((checks - failures)) of $checks checks passed"
  ((checks > 0 && failures == 0))
}
