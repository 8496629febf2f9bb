#!/usr/bin/env bash
# Builds everything and runs all tests, then those of the store's threads under the thread
# sanitizer, then each fuzz target for 20 seconds. The exit code tells: 0 if all passed, 3 if
# packages are missing and can't be installed.
#
#   ./test.sh               all tests
#   ./test.sh ARGUMENT...   only a run of CTest with these arguments, such as -R store
set -euo pipefail

root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/lib.sh
source "$root/scripts/lib.sh"

install_packages build fuzz
prepare_environment
jobs=$(nproc)
# Tests bring their own platform and settings; nothing of the caller's display may reach them.
unset DISPLAY WAYLAND_DISPLAY

configure release "$root/build"
build "$root/build"

status=0
ctest --test-dir "$root/build" --output-on-failure --no-tests=error -j "$jobs" "$@" || status=$?
(($# > 0)) && exit "$status"

# labelled PRESET LABEL COMMAND...: builds what carries the label, and nothing else of the tree, with
# the preset, and runs it with the command. The name of a test is that of its target.
labelled() {
  local preset=$1 label=$2 folder=$root/build-$1
  local -a targets
  shift 2
  configure "$preset" "$folder"
  mapfile -t targets < <(ctest --test-dir "$folder" -N -L "^$label\$" |
    sed -n 's/^ *Test *#[0-9]*: //p')
  ((${#targets[@]} > 0)) || die "no test carries the label $label"
  build "$folder" "${targets[@]}"
  "$@" ctest --test-dir "$folder" -L "^$label\$" --output-on-failure --no-tests=error
}

say "thread sanitizer"
export TSAN_OPTIONS="suppressions='$root/scripts/tsan.supp'${TSAN_OPTIONS:+ $TSAN_OPTIONS}"
labelled tsan tsan without_layout_randomisation || status=$?

say "fuzz targets"
CTEST_PARALLEL_LEVEL=$jobs labelled fuzz fuzz env || status=$?

exit "$status"
