#!/usr/bin/env bash
# Checks C++ files against the project's .clang-format without changing them.
#   tools/check-format.sh            every tracked .cpp and .h file
#   tools/check-format.sh REVISION   the .cpp and .h files changed since REVISION (committed or not)
# Prints each file clang-format would change and exits 1 if there is any; 2 on a usage error.
set -euo pipefail
cd "$(dirname "$0")/.."

clang_format=${CLANG_FORMAT:-clang-format}
if ! command -v "$clang_format" >/dev/null; then
  echo "check-format: $clang_format not found (Debian package clang-format)" >&2
  exit 2
fi

if [ $# -gt 1 ]; then
  echo "usage: $0 [REVISION]" >&2
  exit 2
elif [ $# -eq 1 ]; then
  if ! git rev-parse --verify --quiet "$1^{commit}" >/dev/null; then
    echo "check-format: unknown revision $1" >&2
    exit 2
  fi
  mapfile -t files < <(git diff --name-only --diff-filter=ACMR "$1" -- '*.cpp' '*.h')
else
  mapfile -t files < <(git ls-files -- '*.cpp' '*.h')
fi

bad=()
checked=0
for f in "${files[@]}"; do
  # A tracked file deleted or renamed in the work tree has nothing left to check.
  [ -f "$f" ] || continue
  checked=$((checked + 1))
  if ! "$clang_format" --style=file --dry-run -Werror "$f" >/dev/null 2>&1; then
    bad+=("$f")
  fi
done

if [ ${#bad[@]} -gt 0 ]; then
  echo "check-format: ${#bad[@]} of $checked files are not formatted (fix with clang-format -i):"
  printf '  %s\n' "${bad[@]}"
  exit 1
fi
echo "check-format: $checked files formatted"
