#!/usr/bin/env bash
# Runs screenreader.py against the window: a virtual display, a private D-Bus
# session (the accessibility bus starts inside it) and a fresh data folder
# holding the sample company.
set -euo pipefail
trestle=$1
work=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)
for tool in Xvfb dbus-run-session /usr/bin/python3 /usr/libexec/at-spi-bus-launcher; do
  command -v "$tool" >/dev/null 2>&1 || { echo "FAIL: $tool is missing (scripts/setup installs it)"; exit 1; }
done
rm -rf "$work"
mkdir -p "$work/data" "$work/config" "$work/runtime"
chmod 700 "$work/runtime"
export XDG_DATA_HOME=$work/data XDG_CONFIG_HOME=$work/config XDG_RUNTIME_DIR=$work/runtime
QT_QPA_PLATFORM=offscreen "$trestle" sample >/dev/null

# A display of our own: Xvfb picks a free number and writes it to the pipe.
exec 3< <(Xvfb -displayfd 1 -screen 0 1920x1200x24 -nolisten tcp 2>"$work/xvfb.log")
xvfb_pid=$!
trap 'kill "$xvfb_pid" 2>/dev/null || true' EXIT
read -r -t 20 display <&3 || { echo "FAIL: Xvfb did not start"; cat "$work/xvfb.log"; exit 1; }
export DISPLAY=:$display
# The number comes when the server listens; its socket shows the same.
for _ in $(seq 50); do [ -S "/tmp/.X11-unix/X$display" ] && break; sleep 0.1; done
# The system Python: the Debian packages install pyatspi for it.
dbus-run-session -- /usr/bin/python3 "$here/screenreader.py" "$trestle" "$@"
