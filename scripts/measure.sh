#!/usr/bin/env bash
# Measures the real program on synthetic projects: time and peak memory of a whole run without a
# window (open, check, generate, quit), and the time from the start to the main window.
#
#   scripts/measure.sh [OBJECTS...]    default: 100 1000 10000
set -euo pipefail

root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/lib.sh
source "$root/scripts/lib.sh"

install_packages build measure
prepare_environment
configure release "$root/build"
build "$root/build" canopen-quillforge quillforge-makeproject quillforge-measurerun

bin=$root/build/bin
runs=5
work=$(mktemp -d)
display=
# shellcheck disable=SC2317  # called by the trap
clean_up() {
  if [[ -n $display ]]; then
    kill "$display" && wait "$display"
  fi 2>/dev/null || true
  rm -rf -- "$work"
}
trap clean_up EXIT
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data XDG_RUNTIME_DIR=$work
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM

# best of several runs: the numbers of "wall cpu memory" with the least wall time
best() { sort -n | head -n 1; }

printf 'whole run without a window (-hidden -g)\n'
printf '%8s %9s %9s %10s\n' objects 'wall s' 'cpu s' 'peak MiB'
for count in "${@:-100 1000 10000}"; do
  # shellcheck disable=SC2086  # the default is a list
  for objects in $count; do
    mkdir -p "$work/$objects"
    "$bin/quillforge-makeproject" "$objects" "$work/$objects/p.vxmp"
    for ((run = 0; run < runs; ++run)); do
      "$bin/quillforge-measurerun" "$bin/canopen-quillforge" "$work/$objects/p.vxmp" -hidden -g \
        2>>"$work/log" | tail -n 1
    done | best | {
      read -r wall cpu peak
      printf '%8s %9s %9s %10s\n' "$objects" "$wall" "$cpu" "$peak"
    }
    compgen -G "$work/$objects/*.eds" >/dev/null || say "no EDS was written for $objects objects"
  done
done

# A display of our own, so that nothing else disturbs and nobody is disturbed.
exec {number}<>"$work/display"
Xvfb -displayfd "$number" -screen 0 1280x1024x24 -nolisten tcp 2>/dev/null &
display=$!
for ((try = 0; try < 100; ++try)); do
  [[ -s $work/display ]] && break
  sleep 0.1
done
DISPLAY=:$(tr -d '\n' <"$work/display")
export DISPLAY

# The program's main window is on the display.
window_shown() {
  local id
  id=$(xwininfo -root -tree | sed -n 's/^ *\(0x[0-9a-f]*\) .*("canopen-quillforge".*/\1/p')
  [[ -n $id ]] && xwininfo -id "${id%%$'\n'*}" 2>/dev/null | grep -q 'Map State: IsViewable'
}

printf '\nstart to the main window\n%8s\n' 'wall s'
for ((run = 0; run < runs; ++run)); do
  begin=$(date +%s%N)
  "$bin/canopen-quillforge" >>"$work/log" 2>&1 &
  program=$!
  for ((try = 0; try < 1000; ++try)); do
    window_shown && break
    sleep 0.005
  done
  ((try < 1000)) || die "the main window did not appear: $(tail -n 5 "$work/log")"
  end=$(date +%s%N)
  kill "$program" 2>/dev/null || true
  wait "$program" 2>/dev/null || true
  printf '%d.%03d\n' $(((end - begin) / 1000000000)) $(((end - begin) / 1000000 % 1000))
done | best | while read -r wall; do printf '%8s\n' "$wall"; done
