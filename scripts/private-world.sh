# Sourced: private_world FOLDER makes a home of its own there, so that nothing of the user's is read
# or written; start_service and sign_in give it a local Google Photos service and a session.
private_world() {
  world=$1
  export HOME=$world/home XDG_CONFIG_HOME=$world/home/.config XDG_DATA_HOME=$world/home/.local/share
  export XDG_RUNTIME_DIR=$world/run DBUS_SESSION_BUS_ADDRESS=disabled:
  unset DISPLAY WAYLAND_DISPLAY
  mkdir -p "$XDG_CONFIG_HOME" "$HOME/Pictures"
  mkdir -p -m 700 "$XDG_RUNTIME_DIR"
  echo 'XDG_PICTURES_DIR="$HOME/Pictures"' >"$XDG_CONFIG_HOME/user-dirs.dirs"
}

start_service() { # [service arguments]
  quorvane-emulator --port-file "$world/port" "$@" &
  service=$!
  for _ in $(seq 100); do [ -s "$world/port" ] && break; sleep 0.05; done
  export QUORVANE_GOOGLE_BASE_URL=http://127.0.0.1:$(cat "$world/port")
}

stop_service() {
  [ -z "${service:-}" ] || { kill "$service" && wait "$service"; } 2>/dev/null || true
  service=
}

# The service grants at once: its redirect is the callback URL that a browser would hand over.
sign_in() {
  mkfifo "$world/callback"
  quorvane-cli login <"$world/callback" >"$world/login.txt" 2>&1 &
  local login=$!
  exec 3>"$world/callback"
  for _ in $(seq 200); do grep -q '^http' "$world/login.txt" && break; sleep 0.05; done
  curl -s -o /dev/null -w '%header{location}\n' "$(grep -m1 '^http' "$world/login.txt")" >&3
  wait "$login"
  exec 3>&-
}
