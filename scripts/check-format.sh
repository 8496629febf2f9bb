#!/usr/bin/env bash
# Tells which sources clang-format would lay out differently, and what shellcheck, if it is there,
# has to say about the scripts. With --fix, lays the sources out instead.
set -euo pipefail

root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/lib.sh
source "$root/scripts/lib.sh"

fix=0
[[ ${1:-} == --fix ]] && fix=1

cd "$root"
# sources PATTERN...: files of the names that are tracked or could be, or all of them outside a work
# tree. Expected outputs of tests are laid out by what wrote them.
sources() {
  if git -c safe.directory="$root" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git -c safe.directory="$root" ls-files -z --cached --others --exclude-standard --deduplicate \
      -- "$@" ':!tests/golden/*/*' ':!tests/generatedc/golden/' ':!tests/gendefine/golden/' | while IFS= read -r -d '' file; do
      # What was deleted and not yet committed is still listed.
      if [[ -f $file ]]; then printf '%s\0' "$file"; fi
    done
  else
    local -a names=(-false)
    local pattern
    for pattern in "$@"; do names+=(-o -path "./$pattern"); done
    find . \( -path './build*' -o -path './tests/golden/*/*' -o -path './tests/g*/golden' -o -path ./out -o -path ./.git \) -prune \
      -o -type f \( "${names[@]}" \) -print0
  fi
}

status=0
mapfile -d '' -t files < <(sources '*.cpp' '*.h' '*.c')
if ((${#files[@]} > 0)); then
  if ((fix)); then
    clang-format -i -- "${files[@]}"
  else
    clang-format --dry-run --Werror -- "${files[@]}" || status=1
  fi
fi
say "formatting: ${#files[@]} files looked at"

if command -v shellcheck >/dev/null; then
  mapfile -d '' -t scripts < <(sources '*.sh' '.ci/run')
  if ((${#scripts[@]} > 0)); then
    shellcheck -x -- "${scripts[@]}" || status=1
  fi
fi

exit "$status"
