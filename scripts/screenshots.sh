#!/usr/bin/env bash
# Takes pictures of every page, menu and dialog of the programs, in light and dark.
#
#   scripts/screenshots.sh [--no-build] [FOLDER]
#
# FOLDER (out/screenshots) gets the folders light/, dark/ and screens/. The real programs run on a
# screen of their own (Xvfb, 1024x768; the main window at 3840x2160 besides) with the example
# project, driven by their keyboard shortcuts. Installs what is missing first (Debian, as root or
# with sudo); exit code 3: packages are missing and can't be installed. --no-build takes the
# programs as they are.
set -euo pipefail

root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/lib.sh
source "$root/scripts/lib.sh"

with_build=yes
folder=$root/out/screenshots
for argument in "$@"; do
  case $argument in
  --no-build) with_build=no ;;
  -h | --help)
    sed -n '2,/^set/s/^# \{0,1\}//p' "${BASH_SOURCE[0]}" | sed '$d'
    exit 0
    ;;
  -*) die "unknown option $argument" ;;
  *) folder=$argument ;;
  esac
done

editions=(canopen-quillforge j1939-quillforge can-quillforge energybus-marlwright)
if [[ $with_build == yes ]]; then
  install_packages build screenshots
  prepare_environment
  configure release "$root/build"
  build "$root/build" "${editions[@]}" examples
else
  install_packages screenshots
  prepare_environment
fi
bin=$root/build/bin
for edition in "${editions[@]}"; do
  [[ -x $bin/$edition ]] || die "$bin/$edition is missing"
done
mkdir -p "$folder"
folder=$(cd -P -- "$folder" && pwd)

work=$(mktemp -d)
display=
program=
end_program() {
  if [[ -n $program ]]; then kill "$program" && wait "$program"; fi 2>/dev/null || true
  program=
}
end_display() {
  end_program
  if [[ -n $display ]]; then kill "$display" && wait "$display"; fi 2>/dev/null || true
  display=
}
# shellcheck disable=SC2317  # called by the trap
clean_up() {
  end_display
  rm -rf -- "$work"
}
trap clean_up EXIT
unset WAYLAND_DISPLAY QT_QPA_PLATFORM QT_STYLE_OVERRIDE QT_SCALE_FACTOR

# --- The screen and the program ------------------------------------------------------------------

# start_display WIDTHxHEIGHT
start_display() {
  local number try
  : >"$work/display"
  exec {number}<>"$work/display"
  Xvfb -displayfd "$number" -screen 0 "${1}x24" -nolisten tcp -noreset 2>/dev/null &
  display=$!
  for ((try = 0; try < 100; ++try)); do
    [[ -s $work/display ]] && break
    sleep 0.1
  done
  exec {number}>&-
  [[ -s $work/display ]] || die "no display: Xvfb did not start"
  DISPLAY=:$(tr -d '\n' <"$work/display")
  export DISPLAY
  screen=$1
}

# The windows of the program, the topmost first; neither menus nor tool tips.
windows() {
  local id facts
  xwininfo -root -children | sed -n "s/^ *\(0x[0-9a-f]*\) .*(\"$class\".*/\1/p" |
    while read -r id; do
      facts=$(xwininfo -id "$id" 2>/dev/null) || continue
      [[ $facts == *'Override Redirect State: no'* && $facts == *'Map State: IsViewable'* ]] &&
        printf '%s\n' "$id"
    done
  true
}

# A menu is open.
menu_shown() {
  local id
  xwininfo -root -children | sed -n "s/^ *\(0x[0-9a-f]*\) .*(\"$class\".*/\1/p" |
    while read -r id; do xwininfo -id "$id" 2>/dev/null || true; done |
    awk '/Map State: IsViewable/ { seen = 1 } /Override Redirect State: yes/ && seen { found = 1 }
         /^xwininfo:/ { seen = 0 } END { exit !found }'
}

# There is no window manager that would give a new window the focus.
focus() {
  local id
  id=$(windows | head -n 1)
  if [[ -n $id ]]; then xdotool windowfocus --sync "$id" 2>/dev/null || true; fi
}

# What a desktop tells the program about its colours; carets that don't blink give still pictures.
write_desktop() {
  local scheme=$1 window=239,240,241 text=35,38,41 view=252,252,252
  if [[ $scheme == dark ]]; then
    window=42,46,50 text=252,252,252 view=27,30,32
  fi
  mkdir -p "$home/config"
  cat >"$home/config/kdeglobals" <<END
[Colors:Window]
BackgroundNormal=$window
ForegroundNormal=$text
[Colors:Button]
BackgroundNormal=$window
ForegroundNormal=$text
[Colors:View]
BackgroundNormal=$view
ForegroundNormal=$text
[KDE]
CursorBlinkRate=0
END
}

# start SCHEME PROGRAM [ARGUMENT...]: with settings of its own, on the whole screen.
start() {
  local scheme=$1 try id
  shift
  class=$1
  home=$work/home-$scheme-$class
  write_desktop "$scheme"
  env HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" \
    XDG_RUNTIME_DIR="$work" XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 QT_QPA_PLATFORM=xcb \
    "$bin/$class" "${@:2}" >>"$work/log" 2>&1 &
  program=$!
  for ((try = 0; try < 200; ++try)); do
    id=$(windows | tail -n 1)
    [[ -n $id ]] && break
    sleep 0.05
  done
  [[ -n $id ]] || die "$class shows no window: $(tail -n 5 "$work/log")"
  xdotool windowmove "$id" 0 0 windowsize "$id" "${screen%x*}" "${screen#*x}"
  focus
}

# --- Pictures ------------------------------------------------------------------------------------

picture() { import -silent -window root "$1"; }

# take NAME: a picture of the screen once it has come to rest.
taken=0
take() {
  local file=$target/$1.png try
  kill -0 "$program" 2>/dev/null || die "the program ended before the picture $1"
  picture "$work/former.png"
  for ((try = 0; try < 20; ++try)); do
    sleep 0.15
    picture "$work/now.png"
    same "$work/former.png" "$work/now.png" && break
    mv "$work/now.png" "$work/former.png"
  done
  mv "$work/former.png" "$file"
  taken=$((taken + 1))
}

same() { [[ $(compare -metric AE "$1" "$2" null: 2>&1) == 0 ]]; }

# take_changed NAME FORMER: like take, but false, and no picture, if it looks like the former one.
take_changed() {
  take "$1"
  same "$target/$1.png" "$target/$2.png" || return 0
  rm -f -- "$target/$1.png"
  taken=$((taken - 1))
  return 1
}

keys() { xdotool key --clearmodifiers "$@"; }

# window_count N: waits until the program shows so many windows; false if it doesn't.
window_count() {
  local try
  for ((try = 0; try < 60; ++try)); do
    [[ $(windows | wc -l) == "$1" ]] && return 0
    sleep 0.05
  done
  return 1
}

# dialog NAME KEY...: the dialog that the keys open; it stays open.
dialog() {
  local name=$1 before
  before=$(windows | wc -l)
  shift
  local key
  for key in "$@"; do
    keys "$key"
    sleep 0.15
  done
  if ! window_count $((before + 1)); then
    say "no dialog for $name"
    return 1
  fi
  focus
  take "$name"
}

# Closes what is in front, until only the main window is left.
close_dialogs() {
  local try
  for ((try = 0; try < 8; ++try)); do
    window_count 1 && break
    focus
    keys Escape
  done
  focus
}

# --- The tour ------------------------------------------------------------------------------------

# tour SCHEME: the CANopen edition from end to end.
tour() {
  local scheme=$1 page menu
  target=$folder/$scheme
  rm -rf -- "$target" "$work/project"
  mkdir -p "$target" "$work/project"
  cp -- "$bin"/data/examples/* "$work/project/"
  chmod u+w "$work"/project/*
  start_display 1024x768
  start "$scheme" canopen-quillforge "$work/project/io-module.vxmt"
  sleep 1
  take start

  keys alt+1
  take page-1
  for page in 2 3 4 5 6 7 8 9; do
    keys "alt+$page"
    take_changed "page-$page" "page-$((page - 1))" || break
  done

  keys ctrl+g
  sleep 1
  window_count 1 || true
  focus
  take generated
  for menu in file:f edit:e options:o viewer:v misc:m help:h; do
    keys "alt+${menu#*:}"
    sleep 0.3
    if menu_shown; then
      take "menu-${menu%:*}"
      keys Escape
    fi
    focus
  done
  keys alt+f e
  take menu-examples
  keys Escape Escape
  focus
  keys alt+f r
  take menu-recent
  keys Escape Escape
  focus
  keys alt+f x
  take menu-export
  keys Escape Escape
  focus
  keys alt+l alt+Down
  take line-box
  keys Escape
  focus

  dialog open-project ctrl+o && close_dialogs
  dialog save-as alt+f a && close_dialogs
  dialog about ctrl+a && close_dialogs
  dialog about-qt alt+h q && close_dialogs
  dialog help-page F1 && close_dialogs
  if dialog manual ctrl+m; then
    keys ctrl+f
    xdotool type 'object'
    take manual-search
    close_dialogs
  fi
  dialog changelog alt+h Down Down Return && close_dialogs
  if dialog viewer alt+v Return; then
    keys ctrl+f
    xdotool type 'CO_OBJ'
    keys Return
    take viewer-search
    close_dialogs
  fi
  if dialog import alt+f i; then
    keys Down Down alt+r # one of the profiles that come with the program
    sleep 1
    take import-read
    local part
    for part in subindices:b target:d; do
      if dialog "import-${part%:*}" "alt+${part#*:}"; then
        keys Escape
        window_count 2 || true
      fi
      focus
    done
    close_dialogs
  fi

  # A further line: the question, its outcome, and the question at the end.
  keys alt+l alt+Down End Up Up Up Return
  if window_count 2; then
    focus
    take add-line
    keys alt+y
    window_count 1 || true
    focus
    take two-lines
  fi
  if dialog close-check alt+f q; then
    keys shift+Tab space
    sleep 1
    focus
    take project-diff
    close_dialogs
  fi
  end_display
}

# The start of the other editions, with a new project.
other_editions() {
  target=$folder/screens
  start_display 1024x768
  start light j1939-quillforge
  take j1939
  end_program
  start light energybus-marlwright
  take energybus
  end_program
  start light can-quillforge
  take can-protocol
  end_display
}

large_screen() {
  local scheme
  target=$folder/screens
  for scheme in light dark; do
    start_display 3840x2160
    QT_SCALE_FACTOR=2 start "$scheme" canopen-quillforge "$work/project/io-module.vxmt"
    sleep 1
    take "main-window-4k-$scheme"
    end_display
  done
}

rm -rf -- "$folder/screens"
mkdir -p "$folder/screens"
say "taking pictures into $folder"
tour light
tour dark
other_editions
large_screen
say "$taken pictures"
