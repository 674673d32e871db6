#!/usr/bin/env bash
# Pictures of the nine entry screens, the summary sheet and the explanation of
# its tax due under a virtual X
# server, for the README and for looking the screens over (captions clipped,
# right-to-left order, alignment). Not a test: run it by hand after a build.
#   tests/e2e/screenshots.sh [BUILD_DIR] [OUT_DIR]
set -euo pipefail
cd "$(dirname "$0")/../.."
BUILD=${1:-build}
OUT=${2:-docs/screens}

. tests/e2e/x_session.sh
run_in_virtual_display "$@"

WORK=$(mktemp -d)
PID=""
trap 'kill $PID 2>/dev/null || true; rm -rf "$WORK"' EXIT
prepare_session "$WORK"
mkdir -p "$OUT"

"$BUILD/bin/zelmor" --data-dir "$WORK/data" --today 2016-06-30 &
PID=$!
WIN=$(wait_window "^Zelmor 2015$")
xdotool windowfocus --sync "$WIN"
sleep 0.3

# The window alone, as a small picture.
shot() {
  eval "$(xdotool getwindowgeometry --shell "$WIN")"
  import -window root -crop "${WIDTH}x${HEIGHT}+${X}+${Y}" +repage "$WORK/shot.png"
  convert "$WORK/shot.png" -colors 64 "PNG8:$OUT/$1.png"
}

xdotool type --delay 20 "123456782"; xdotool key Return
xdotool type --delay 20 "כהן"; xdotool key Return
xdotool type --delay 20 "דנה"; xdotool key Return Return
xdotool type --delay 20 "15/03/1970"; xdotool key Return
sleep 0.2
shot page-1
xdotool key Next; sleep 0.2
xdotool type --delay 20 "250000"; xdotool key Return
xdotool type --delay 20 "12500"; xdotool key Return
sleep 0.2
shot page-2
for page in 3 4 5 6 7 8 9; do
  xdotool key Next; sleep 0.3
  shot "page-$page"
done
xdotool key F2; sleep 0.5
shot summary
# The explanation of the tax due ("מס מגיע"), from a click on its amount and F1.
xdotool mousemove --window "$WIN" 330 205 click 1; sleep 0.2
xdotool key F1
WIN=$(wait_window "^הסבר")
sleep 0.5
xdotool windowfocus --sync "$WIN"
xdotool key Down plus Down plus Down plus; sleep 0.3
shot explain-panel
echo "pictures in $OUT"
