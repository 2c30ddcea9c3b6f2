#!/bin/sh
# Removes the agent from this machine and leaves its data folder; on macOS --remove-data removes that too.
# Only what the installation put there, as its list of files says; so a copy of the folder removes nothing.
# Started by hand, or by the server's action 1070 from inside the service: so the files are removed first
# and the service is stopped last, which may end this script too.
# NORVIK_ROOT is a folder in place of the system's root, for trials.
set -u
remove_data=${1:-}
case "$remove_data" in
  '' | --remove-data) ;;
  *) echo "usage: UninstallAgent.sh [--remove-data]" >&2; exit 2 ;;
esac
home=$(cd "$(dirname "$0")" && pwd)
root=${NORVIK_ROOT:-}
list=$home/share/norvik-agent/installed-files
place=
[ ! -f "$list" ] || IFS= read -r place <"$list"
if [ -z "$place" ] || ! [ "$home" -ef "$root$place" ]; then
  echo "UninstallAgent: nothing is removed, because no agent was installed into $home" >&2
  exit 1
fi
# The service does not read the output to its end, and a write to a closed pipe would end the script.
[ ! -p /dev/stdout ] || exec >/dev/null 2>&1

# The list has the folder of the installation, the files, with this script and the list last, and the
# folders, inner ones first. Those with files of others stay.
remove_installed() {
  sed 1d "$list" | while IFS= read -r path; do
    case "$path" in
      */) rmdir "$root$path" 2>/dev/null ;;
      *) rm -f "$root$path" ;;
    esac
  done
}

# The agent of the system. Earlier versions had their data in the installation. Where it runs on without its files, it makes the
# data folder anew: so it is stopped before that is removed.
remove_from_mac() {
  . "$home/share/norvik-agent/macos/services.sh"
  if [ -n "$remove_data" ]; then
    stop_services || exit 1
    rm -rf "$root/Library/Application Support/Norvik" "$home/data" "$root/var/log/norvik-agent.log"
  fi
  rm -rf "$home/.new"
  remove_installed
  forget_receipt
  stop_services
}

# Only an installation to the usual folder has brought the services.
service=
for file in /usr/lib/systemd/system/norvik-agent.service /Library/LaunchDaemons/com.norvik.agent.plist; do
  ! grep -qxF "$file" "$list" || service=yes
done
case "$(uname -s)" in
  Darwin)
    if [ -n "$service" ]; then remove_from_mac; else remove_installed; fi ;;
  *)
    if dpkg-query -S "$home/UninstallAgent.sh" >/dev/null 2>&1; then
      # Outside of the service, because the removal of the package stops that.
      if [ -d /run/systemd/system ]; then
        exec systemd-run --collect --quiet dpkg --remove norvik-agent
      fi
      exec dpkg --remove norvik-agent
    fi
    remove_installed
    if [ -n "$service" ] && [ -d /run/systemd/system ]; then
      systemctl disable norvik-agent.service
      systemctl stop --no-block norvik-agent.service
    fi ;;
esac
