#!/usr/bin/env bash
# Builds the CANopen edition and runs it.
#
#   ./run.sh              generate the example project into out/, without a window
#   ./run.sh ARGUMENT...  start the program with these arguments; relative paths are relative to
#                         the folder that this is called from
#
# Installs what is missing first (Debian, as root or with sudo). Exit code 3: packages are missing
# and can't be installed. QUILLFORGE_TIMEOUT: seconds after which the example run is given up (300).
set -euo pipefail

root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=scripts/lib.sh
source "$root/scripts/lib.sh"

install_packages build
prepare_environment
configure release "$root/build"
build "$root/build" canopen-quillforge examples

program=$root/build/bin/canopen-quillforge
if (($# > 0)); then
  exec "$program" "$@"
fi

examples=$root/build/bin/data/examples
out=$root/out
project=$out/io-module.vxmt
[[ -f $examples/io-module.vxmt ]] || die "$examples/io-module.vxmt is missing"
mkdir -p "$out"
# Outputs of an earlier run must not be taken for those of this one.
find "$out" -mindepth 1 -maxdepth 1 \( -name 'io[-_]module*' -o -name 'gen_*' -o -name '__vxm*' \) \
  -exec rm -rf -- {} +
# The header declares the application variables that the example's sources use.
cp -f -- "$examples/io-module.vxmt" "$examples/io_module.h" "$out/"
chmod u+w "$project"

# The user's own settings must not change what the example gives, nor the other way round; and a
# display that can't be reached must not matter.
private=$(mktemp -d)
trap 'rm -rf -- "$private"' EXIT
say "generating from $project"
touch "$private/started"
status=0
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM XDG_CONFIG_HOME="$private/config" \
  XDG_DATA_HOME="$private/data" XDG_RUNTIME_DIR="$private" QT_LOGGING_RULES='*.debug=false' \
  timeout "${QUILLFORGE_TIMEOUT:-300}" "$program" "$project" -hidden -g </dev/null || status=$?
((status == 0)) || die "the program ended with $status"

say "written into $out:"
(cd "$out" && find . -type f -newer "$private/started" -printf '%P\n' | sort |
  while IFS= read -r file; do printf '%9d  %s\n' "$(stat -c %s "$file")" "$file"; done)
compgen -G "$out/*.eds" >/dev/null || die "no EDS was written, see $out/__vxmerrorlog.txt"
