#!/bin/sh
# Installs or replaces the agent from the unpacked archive, and starts it. Data and configuration stay.
# All files are copied before the service stops; if one cannot be, nothing has changed.
# NORVIK_ROOT is a folder in place of the system's root, for trials.
set -u
here=$(CDPATH= cd -- "$(dirname "$0")" && pwd)
shared=share/norvik-agent/macos
. "$here/$shared/services.sh"
new=$home/.new
made= stopped=

fail() { echo "install.sh: $1" >&2; exit 1; }

# Runs at every end but a kill: the next run then removes what this one left.
finish() {
  status=$?
  trap - EXIT
  rm -rf "$new"
  [ -z "$stopped" ] || start_services || status=1
  if [ "$status" != 0 ] && [ -n "$made" ]; then
    # Only empty folders that this run made.
    echo "$made" | while read -r folder; do rmdir "$folder" 2>/dev/null; done
  fi
  exit "$status"
}

make_folder() {
  [ ! -d "$1" ] || return 0
  make_folder "$(dirname "$1")" && mkdir -m 755 "$1" || return 1
  made="$1${made:+
$made}"
}

# copy SOURCE MODE: without extended attributes, so that a download's quarantine is not installed.
copy() {
  cat "$here/$1" >"$new/${1##*/}" && chmod "$2" "$new/${1##*/}" || fail "$1 cannot be copied to $home"
}

# put NAME FOLDER: the old file is replaced in one step.
put() { mv -f "$new/$1" "$2/$1" || fail "$1 cannot be put into $2"; }

[ -n "$root" ] || [ "$(id -u)" = 0 ] || fail "must be run by root"
umask 022
trap finish EXIT
trap 'exit 1' HUP INT TERM

for folder in "$home/bin" "$home/lib" "$home/$shared" "${service_file%/*}" "${user_file%/*}"; do
  make_folder "$folder" || fail "$folder cannot be made"
done
rm -rf "$new"
mkdir -m 700 "$new" || fail "$home cannot be written"
for file in bin/norvik-agent lib/libNorvikAgentCommon.9.dylib lib/libNorvikKOB.dylib UninstallAgent.sh; do
  copy "$file" 755
done
copy "${shared%/macos}/installed-files" 644
for file in services.sh "$label.plist" "$label.user.plist"; do copy "$shared/$file" 644; done

stopped=yes
stop_services || fail "the old service does not stop"
# First, so that what a cut leaves can be removed.
put installed-files "$home/${shared%/macos}"
put norvik-agent "$home/bin"
put libNorvikAgentCommon.9.dylib "$home/lib"
put libNorvikKOB.dylib "$home/lib"
put UninstallAgent.sh "$home"
put services.sh "$home/$shared"
put "$label.plist" "${service_file%/*}"
put "$label.user.plist" "${user_file%/*}"
# The receipt of a package says what that package had installed.
forget_receipt
