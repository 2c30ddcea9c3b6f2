#!/bin/sh
# Removes the agent from this machine and leaves its data folder; on macOS --remove-data removes that too.
# Started by hand, or by the server's action 1070 from inside the service: so the files are removed first
# and the service is stopped last, which may end this script too.
set -u
remove_data=${1:-}
case "$remove_data" in
  '' | --remove-data) ;;
  *) echo "usage: UninstallAgent.sh [--remove-data]" >&2; exit 2 ;;
esac
home=$(cd "$(dirname "$0")" && pwd)
[ -x "$home/bin/norvik-agent" ] || { echo "UninstallAgent: no agent beside $0" >&2; exit 1; }
# The service does not read the output to its end, and a write to a closed pipe would end the script.
[ ! -p /dev/stdout ] || exec >/dev/null 2>&1

remove_tree() {
  rm -rf "$home/bin/norvik-agent" "$home"/lib/libNorvik* "$home/lib/cmake/NorvikAgent" \
    "$home/include/norvik-agent" "$home/share/norvik-agent" "$home/share/doc/norvik-agent"
  rm -f "$home/UninstallAgent.sh"
  # Only empty folders: other files there are not ours.
  find "$home" -depth -type d -empty ! -path "$home/data/*" -delete
}

# The agent of the system, whose data folder is here too. Where it runs on without its files, it makes the
# data folder anew: so it is stopped before that is removed.
remove_from_mac() {
  NORVIK_ROOT=${home%/opt/local/norvik}
  . "$home/share/norvik-agent/macos/services.sh"
  if [ -n "$remove_data" ]; then
    stop_services || exit 1
    rm -rf "$home/data" "$root/var/log/norvik-agent.log"
  fi
  rm -f "$service_file" "$user_file"
  rm -rf "$home/.new"
  remove_tree
  rmdir "$root/opt/local" "$root/opt" 2>/dev/null
  forget_receipt
  stop_services
}

case "$(uname -s)" in
  Darwin)
    case "$home" in
      */opt/local/norvik) remove_from_mac ;;
      *) remove_tree ;;
    esac ;;
  *)
    if dpkg-query -W norvik-agent >/dev/null 2>&1; then
      # Outside of the service, because the removal of the package stops that.
      if [ -d /run/systemd/system ]; then
        exec systemd-run --collect --quiet dpkg --remove norvik-agent
      fi
      exec dpkg --remove norvik-agent
    fi
    rm -f /usr/lib/systemd/system/norvik-agent.service \
      /usr/lib/systemd/user/norvik-agent-user.service
    remove_tree
    if [ -d /run/systemd/system ]; then
      systemctl disable norvik-agent.service
      systemctl stop --no-block norvik-agent.service
    fi ;;
esac
