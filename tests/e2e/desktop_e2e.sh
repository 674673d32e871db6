#!/usr/bin/env bash
# A report typed into the desktop program with the keyboard only, saved with
# Ctrl+S, the program left through its menu; zelmor-cli must then give back
# exactly what was typed. Then the program is started again, the report opened
# from the taxpayer list by its id typed in the search box, and printed to a
# PDF file from the print dialog.
#   desktop_e2e.sh ZELMOR ZELMOR_CLI
set -euo pipefail
ZELMOR=$1
CLI=$2
. "$(dirname "$0")/x_session.sh"

for tool in xvfb-run xdotool jq flock; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
run_in_virtual_display "$@"

WORK=$(mktemp -d)
PID=""
cleanup() {
  [ -n "$PID" ] && kill "$PID" 2>/dev/null || true
  rm -rf "$WORK"
}
trap cleanup EXIT
prepare_session "$WORK"
DATA="$WORK/data"
DB="$DATA/2015/D2015.BRK"

fail() {
  echo "FAIL: $*" >&2
  import -window root "$WORK/failed.png" 2>/dev/null && cp "$WORK/failed.png" "${TMPDIR:-/tmp}/zelmor-e2e-failed.png" &&
    echo "screen at the failure: ${TMPDIR:-/tmp}/zelmor-e2e-failed.png" >&2
  exit 1
}

# A message box: wait for it, give it the keyboard, press its default button.
answer_box() {
  local box
  box=$(wait_window "$1") || fail "no message box \"$1\""
  xdotool windowfocus --sync "$box"
  xdotool key Return
  for _ in $(seq 1 250); do
    xdotool search --onlyvisible --name "$1" >/dev/null 2>&1 || return 0
    sleep 0.02
  done
  fail "the message box \"$1\" did not close"
}

# Out through the menu (its access letter, then up to the last entry), Yes to
# the exit question: saved once more on the way out; the program must end.
quit_saving() {
  xdotool windowfocus --sync "$WIN"
  key alt+hebrew_dalet; sleep 0.25   # the menu opens
  key Up
  key Return
  answer_box "יציאה"
  answer_box "^שמירת"
  for _ in $(seq 1 250); do
    kill -0 "$PID" 2>/dev/null || break
    sleep 0.02
  done
  kill -0 "$PID" 2>/dev/null && fail "the program did not end"
  wait "$PID" || fail "the program ended with status $?"
  PID=""
}

type_text() { xdotool type --delay 40 "$1"; }
key() { xdotool key "$@"; sleep 0.25; }

"$ZELMOR" --data-dir "$DATA" --today 2016-06-30 >"$WORK/zelmor.log" 2>&1 &
PID=$!
WIN=$(wait_window "^Zelmor 2015$") || fail "the main window did not appear"
xdotool windowfocus --sync "$WIN"
sleep 0.2

# Page 1: the focus opens in the id; Enter moves on in tab order.
type_text "123456782"; key Return
type_text "כהן"; key Return
type_text "דנה"; key Return
key Return
type_text "15/03/1970"; key Return
# Page 2: business income and national insurance receipts of the registered spouse.
key Next
type_text "250000"; key Return
type_text "12500"; key Return
# Page 8: tax withheld and paid.
for _ in 3 4 5 6 7 8; do key Next; done
type_text "30000"; key Return
type_text "4500"; key Return

key ctrl+s
answer_box "^שמירת"

# F2: the summary sheet. The amounts it shows, read through the accessibility
# tree, are those of zelmor-cli calc for the report as it was typed (every
# amount that is not 0, "#,##0" with the minus behind the digits).
xdotool windowfocus --sync "$WIN"
key F2
wait_window "^Zelmor 2015 - חישוב" >/dev/null || fail "F2 did not show the results"
sleep 0.3
/usr/bin/python3 "$(dirname "$0")/shown_labels.py" zelmor >"$WORK/labels.txt" || fail "the accessibility tree could not be read"
grep -E '^[0-9]{1,3}(,[0-9]{3})*-?$' "$WORK/labels.txt" | sort >"$WORK/shown-amounts.txt"
"$CLI" export 123456782 --db "$DB" >"$WORK/saved-doc.json"
"$CLI" calc "$WORK/saved-doc.json" --today 2016-06-30 --data-dir "$DATA" | python3 -c '
import json, sys
for v in json.load(sys.stdin)["CMain"].values():
    if isinstance(v, int) and v != 0:
        print(f"{abs(v):,}" + ("-" if v < 0 else ""))' | sort >"$WORK/calc-amounts.txt"
[ -s "$WORK/shown-amounts.txt" ] || fail "the summary shows no amounts"
diff -u "$WORK/calc-amounts.txt" "$WORK/shown-amounts.txt" || fail "the summary's amounts differ from zelmor-cli calc"
echo "the summary shows the $(wc -l <"$WORK/shown-amounts.txt") amounts of zelmor-cli calc"
key F2
wait_window "^Zelmor 2015 - דנה כהן$" >/dev/null || fail "F2 did not lead back to editing"

quit_saving

# What was typed, as a report document; the rest of the report is a new one,
# but for the months lists of page 7, which show twelve for no months and keep
# what they show once the page has been passed.
cat >"$WORK/typed.json" <<'JSON'
{"format": "zelmor-report", "version": 1, "year": 2015,
 "Pratim": {"IDM": "123456782", "LastNameM": "כהן", "FirstNameM": "דנה", "BirthDateM": "1970-03-15"},
 "Yegia": {"N150": 250000, "N250": 12500},
 "Zikuim": {"N093Month": 12, "N193Month": 12},
 "Tashlumim": {"N294M": 30000, "N042M": 4500}}
JSON
"$CLI" import "$WORK/typed.json" --db "$WORK/expected.BRK" >/dev/null
"$CLI" export 123456782 --db "$WORK/expected.BRK" | jq -S . >"$WORK/expected.json"
"$CLI" export 123456782 --db "$DB" | jq -S . >"$WORK/saved.json" || fail "zelmor-cli export found no report"
diff -u "$WORK/expected.json" "$WORK/saved.json" || fail "the stored report differs from what was typed"

# Again: the report from the list, found by its id, printed to a PDF file.
"$ZELMOR" --data-dir "$DATA" --today 2016-06-30 >"$WORK/zelmor2.log" 2>&1 &
PID=$!
WIN=$(wait_window "^Zelmor 2015$") || fail "the main window did not appear again"
xdotool windowfocus --sync "$WIN"
sleep 0.2
key alt+hebrew_dalet; sleep 0.25     # the menu opens
key hebrew_resh          # "&רשימת נישומים"
LIST=$(wait_window "^רשימת נישומים$") || fail "no taxpayer list"
xdotool windowfocus --sync "$LIST"
type_text "123456782"    # the search box has the focus
key Return
WIN=$(wait_window "^Zelmor 2015 - דנה כהן$") || fail "the report did not open from the list"
xdotool windowfocus --sync "$WIN"
key ctrl+p
PRINT=$(wait_window "^הדפסה$") || fail "no print dialog"
xdotool windowfocus --sync "$PRINT"
key Tab Tab              # from Print past Cancel to the printers (Preview waits for a choice)
key End                  # the PDF entry stands last
key Tab space            # "נתוני הדו\"ח"
key Return               # Print, the default button
SAVE=$(wait_window "שמירה כקובץ PDF") || fail "no file chooser"
xdotool windowfocus --sync "$SAVE"
key ctrl+a
type_text "$WORK/report.pdf"
key Return
for _ in $(seq 1 500); do
  [ -s "$WORK/report.pdf" ] && ! xdotool search --onlyvisible --name "^הדפסה$" >/dev/null 2>&1 && break
  sleep 0.02
done
[ -s "$WORK/report.pdf" ] || fail "the print dialog wrote no PDF"
pdftotext "$WORK/report.pdf" "$WORK/report.txt"
grep -q "123456782" "$WORK/report.txt" || fail "the PDF does not hold the report's id"
"$CLI" print "$WORK/typed.json" --pdf "$WORK/cli.pdf" --report --today 2016-06-30 --data-dir "$DATA" >/dev/null
diff <(pdftotext -layout "$WORK/cli.pdf" - | grep -v "^$") <(pdftotext -layout "$WORK/report.pdf" - | grep -v "^$") \
  || fail "the dialog's PDF differs from zelmor-cli print"

quit_saving
echo "PASS"
