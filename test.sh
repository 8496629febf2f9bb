#!/usr/bin/env bash
# Builds everything and runs all tests, then those of the store's threads under the thread
# sanitizer. The exit code tells: 0 if all passed, 3 if packages are missing and can't be installed.
#
#   ./test.sh               all tests
#   ./test.sh ARGUMENT...   only a run of CTest with these arguments, such as -R store
set -euo pipefail

root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/lib.sh
source "$root/scripts/lib.sh"

install_packages build
prepare_environment
jobs=$(nproc)
# Tests bring their own platform and settings; nothing of the caller's display may reach them.
unset DISPLAY WAYLAND_DISPLAY

configure release "$root/build"
build "$root/build"

status=0
ctest --test-dir "$root/build" --output-on-failure --no-tests=error -j "$jobs" "$@" || status=$?
(($# > 0)) && exit "$status"

say "thread sanitizer"
configure tsan "$root/build-tsan"
# A test's name is that of its target.
mapfile -t targets < <(ctest --test-dir "$root/build-tsan" -N -L '^tsan$' |
  sed -n 's/^ *Test *#[0-9]*: //p')
((${#targets[@]} > 0)) || die "no test carries the label tsan"
build "$root/build-tsan" "${targets[@]}"
export TSAN_OPTIONS="suppressions='$root/scripts/tsan.supp'${TSAN_OPTIONS:+ $TSAN_OPTIONS}"
without_layout_randomisation ctest --test-dir "$root/build-tsan" -L '^tsan$' --output-on-failure \
  --no-tests=error || status=$?

exit "$status"
