# shellcheck shell=bash
# Shared by run.sh, test.sh and the other scripts: packages, a usable environment, the build.
# A script sources this with `root` set to the source tree, and runs under `set -euo pipefail`.

: "${root:?}"

say() { printf '== %s\n' "$*" >&2; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# The packages of the groups given as arguments, one a line.
packages_of() {
  local line package groups group
  while read -r line; do
    [[ -z $line || $line == \#* ]] && continue
    read -r package groups <<<"$line"
    for group in "$@"; do
      if [[ " $groups " == *" $group "* ]]; then
        printf '%s\n' "$package"
        break
      fi
    done
  done <"$root/scripts/packages.txt"
}

# Those of the packages given as arguments that are not installed.
missing_packages() {
  local package
  for package in "$@"; do
    [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed* ]] ||
      printf '%s\n' "$package"
  done
}

# What goes before a command that needs root; filled by can_be_root.
as_root=()

# Never asks for a password unless somebody sits at the terminal and can give it.
can_be_root() {
  [[ $(id -u) == 0 ]] && return 0
  command -v sudo >/dev/null || return 1
  if sudo -n true 2>/dev/null; then
    as_root=(sudo -n)
  elif [[ -t 0 && -t 2 ]] && sudo -v; then
    as_root=(sudo)
  else
    return 1
  fi
}

# install_packages GROUP...: installs what the groups lack. Exit code 3 if it can't.
install_packages() {
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    say "not a Debian system: these must be there already: $(packages_of "$@" | paste -sd' ')"
    return 0
  fi
  local -a wanted missing apt
  local log
  mapfile -t wanted < <(packages_of "$@")
  mapfile -t missing < <(missing_packages "${wanted[@]}")
  ((${#missing[@]} == 0)) && return 0

  if ! can_be_root; then
    {
      printf 'error: these packages are missing, and neither root nor sudo is at hand:\n'
      printf '  %s\n' "${missing[@]}"
      printf 'Install them with\n  apt-get install --no-install-recommends %s\nand start again.\n' \
        "${missing[*]}"
    } >&2
    exit 3
  fi

  say "installing ${missing[*]}"
  log=$(mktemp)
  apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o Acquire::Retries=3
    -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0)
  # One dead source among several must not stop an installation that the others can serve.
  "${apt[@]}" update </dev/null >"$log" 2>&1 || say "apt-get update reports problems, going on"
  "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >>"$log" 2>&1 || true
  mapfile -t missing < <(missing_packages "${wanted[@]}")
  if ((${#missing[@]} != 0)); then
    tail -n 40 "$log" >&2
    printf 'error: could not install: %s\n' "${missing[*]}" >&2
    exit 3
  fi
  rm -f "$log"
}

# Makes the environment fit for unattended work: a UTF-8 locale, a home that can be written.
prepare_environment() {
  umask 022
  case "${LC_ALL:-${LC_CTYPE:-${LANG:-}}}" in
  *[Uu][Tt][Ff]-8 | *[Uu][Tt][Ff]8) ;;
  *) export LC_ALL=C.UTF-8 ;;
  esac
  [[ -w $root ]] || die "cannot write to $root"
  if [[ -z ${HOME:-} || ! -d $HOME || ! -w $HOME ]]; then
    export HOME=$root/build-home
    mkdir -p "$HOME"
    # A cache or data folder inherited from somebody else is no more writable than the home.
    unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME CCACHE_DIR
  fi
}

# cached_value FOLDER VARIABLE: what a build folder remembers.
cached_value() {
  sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt" 2>/dev/null | head -n 1
}

discard_build() {
  local folder=$1
  [[ -e $folder || -L $folder ]] || return 0
  say "discarding $folder"
  rm -rf -- "$folder" || die "cannot remove $folder (who made it?)"
}

# configure PRESET FOLDER: configures, from scratch where the folder can't be gone on with: another
# generator made it, or another source tree, or an earlier run was cut off half way.
configure() {
  local preset=$1 folder=$2 log
  if [[ -e $folder && ! -d $folder ]]; then
    die "$folder is in the way: it is no folder"
  fi
  if [[ -d $folder ]]; then
    [[ -w $folder ]] || die "cannot write to $folder; it belongs to $(stat -c %U "$folder")"
    if [[ -f $folder/CMakeCache.txt ]]; then
      if [[ $(cached_value "$folder" CMAKE_GENERATOR) != Ninja ||
        $(cached_value "$folder" CMAKE_HOME_DIRECTORY) != "$root" ]]; then
        discard_build "$folder"
      fi
    fi
  fi
  log=$(mktemp)
  if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1; then
    if [[ -d $folder ]]; then
      discard_build "$folder"
      (cd "$root" && cmake --preset "$preset") >"$log" 2>&1 && rm -f "$log" && return 0
    fi
    cat "$log" >&2
    rm -f "$log"
    die "configuring failed"
  fi
  rm -f "$log"
}

# build FOLDER TARGET...: everything if no target is given.
build() {
  local folder=$1
  shift
  cmake --build "$folder" ${1:+--target "$@"} >&2 || die "building failed"
}

# A stack layout that the thread sanitizer can live with: its runtime gives up where the kernel
# spreads mappings too widely.
without_layout_randomisation() {
  if setarch "$(uname -m)" -R true 2>/dev/null; then
    setarch "$(uname -m)" -R "$@"
  else
    "$@"
  fi
}
