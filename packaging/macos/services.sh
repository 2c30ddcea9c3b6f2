# Stops and starts the agent's service and the processes of users with a desktop. Read by install.sh,
# UninstallAgent.sh and the scripts of the package. NORVIK_ROOT is a folder in place of the system's root, for trials.
label=com.norvik.agent
root=${NORVIK_ROOT:-}
home=$root/opt/local/norvik
service_file=$root/Library/LaunchDaemons/$label.plist
user_file=$root/Library/LaunchAgents/$label.user.plist

# Numbers of the users with a desktop. Those of the system, such as that of the setup assistant, are none.
desktops() {
  who | while read -r user line _; do
    case "$line:$user" in
      console:_* | console:root) ;;
      console:*) id -u "$user" ;;
    esac
  done
}

loaded() { launchctl print "$1" >/dev/null 2>&1; }

# stop TARGET: returns after it has ended, since it cannot be started before. The service has 45 s.
stop() {
  loaded "$1" || return 0
  launchctl bootout "$1" >/dev/null 2>&1
  seconds=0
  while loaded "$1"; do
    [ "$seconds" -lt 50 ] || { echo "$label: $1 does not stop" >&2; return 1; }
    sleep 1
    seconds=$((seconds + 1))
  done
}

# start DOMAIN LABEL FILE: also if it was disabled; whoever installs it wants it to run.
start() {
  launchctl enable "$1/$2" && launchctl bootstrap "$1" "$3" && return 0
  loaded "$1/$2" || { echo "$label: $1/$2 does not start" >&2; return 1; }
}

stop_services() {
  for user in $(desktops); do stop "gui/$user/$label.user"; done
  stop "system/$label"
}

# A user's process that does not start is no reason to fail: it starts at the next logon.
start_services() {
  for user in $(desktops); do start "gui/$user" "$label.user" "$user_file"; done
  start system "$label" "$service_file"
}

forget_receipt() {
  ! pkgutil --pkg-info "$label" >/dev/null 2>&1 || pkgutil --forget "$label" >/dev/null
}
