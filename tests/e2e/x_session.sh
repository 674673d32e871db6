# What the scripts that drive the desktop program under a virtual X server
# share. Source it; the calling script runs itself again inside the server.

# Runs the calling script again under its own virtual X server, one server at
# a time on the machine (-o: a server left behind must not keep the lock;
# -noreset: the server is not reset when its last client leaves, which can
# turn the next client away).
run_in_virtual_display() {
  if [ -z "${ZELMOR_E2E_DISPLAY:-}" ]; then
    exec flock -o /tmp/xvfb.lock xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" \
      dbus-run-session -- env ZELMOR_E2E_DISPLAY=1 bash "$(realpath "$0")" "$@"
  fi
}

# The program's environment: the X platform, a private runtime folder, and the
# accessibility bus, through which a script reads what the window shows.
prepare_session() {
  export QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR="$1/runtime"
  mkdir -m 700 "$XDG_RUNTIME_DIR"
  export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1
  dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress >/dev/null
}

# The id of the visible window whose name matches, polled every 20 ms for up
# to ten seconds.
wait_window() {
  local name=$1 id
  for _ in $(seq 1 500); do
    id=$(xdotool search --onlyvisible --name "$name" 2>/dev/null | head -1 || true)
    [ -n "$id" ] && { echo "$id"; return 0; }
    sleep 0.02
  done
  return 1
}
