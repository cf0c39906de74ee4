#!/usr/bin/env bash
# `vantrel check` on the shipped example and on broken copies of it: the trace description
# as JSON, or the loader's exact error text on standard error and exit status 1.
set -uo pipefail
vantrel="$1"
examples="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# The example loads and names its columns, value texts and symbols.
json="$("$vantrel" check --json --symbols "$examples/pumps_symbols.sym" "$examples/PMP1_pumps.vtld")" ||
  fail "the example does not load"
/usr/bin/python3 - "$json" <<'PY' || fail "the example's JSON"
import json, sys
d = json.loads(sys.argv[1])
assert d["HeaderApp"] == "PumpStation" and d["HeaderKeyText"] == "PMP1", d
assert d["DescVersion"] == 3 and d["RecordLength"] == 6 and d["ColumnCount"] == 12
cols = {c["Column"]: c for c in d["Columns"]}
assert cols[4]["Caption"] == "State" and cols[4]["DefaultText"] == "Unknown"
assert cols[4]["Values"][:2] == [[0, "Idle"], [1, "Starting"]], cols[4]["Values"]
assert cols[12]["FieldType"] == 6 and cols[12]["DisplayCode"] == "a"
assert d["ValueTexts"]["1_Application_0"]["Text"] == "Pump North"
assert d["Symbols"]["R 1200"]["Name"] == "Station.Speed_SP"
PY

# Checks that `check` says `text` on standard error with exit status 1, and `json` as the
# JSON error.
expect_error() {
  local err status j
  err="$("$vantrel" check "$1" 2>&1 >/dev/null)"
  status=$?
  [ "$status" -eq 1 ] && [ "$err" == "$2" ] || fail "$1: status $status, said [$err]"
  j="$("$vantrel" check --json "$1")"
  /usr/bin/python3 -c 'import json,sys; assert json.loads(sys.argv[1]) == {"error": sys.argv[2]}' \
    "$j" "$3" || fail "$1: JSON error [$j]"
}

# A broken variant of the example (the corrected spelling RecordLength): the loader's exact
# text on standard error, exit status 1, and the same text as the JSON error. Each loader
# error's text on the terminal is checked by the reference's own check (tests/docs).
sed -e 's/^RecordLenght=/RecordLength=/' "$examples/PMP1_pumps.vtl" >"$work/broken.vtl"
"$vantrel" crypt "$work/broken.vtl" >/dev/null || fail "crypt"
expect_error "$work/broken.vtld" "Invalid Record Lenght : 0" "Invalid Record Lenght : 0"

# A plain description is not enciphered. The message's carriage returns are line breaks on
# the terminal and kept as they are in JSON.
cp "$examples/PMP1_pumps.vtl" "$work/plain.vtl"
expect_error "$work/plain.vtl" "$(printf 'Error in description file :\n%s\n\nIncorrect file !' "$work/plain.vtl")" \
  "$(printf 'Error in description file :\n%s\r\rIncorrect file !' "$work/plain.vtl")"

# The user buffer file needs the buffer's key.
"$vantrel" check --key TNK1 "$examples/tanks.vtlr" >/dev/null || fail "the user buffer file"
"$vantrel" check --key XXXX "$examples/tanks.vtlr" >/dev/null 2>&1 && fail "a wrong key loads"

# A folder (or device, or pipe) given as a description is named, never read.
mkdir "$work/folder.vtld"
expect_error "$work/folder.vtld" \
  "$(printf 'Error in description file :\n%s\n\nNot a regular file !' "$work/folder.vtld")" \
  "$(printf 'Error in description file :\n%s\r\rNot a regular file !' "$work/folder.vtld")"

# A duration that is no finite number of seconds up to a year is refused before anything runs
# ("nan" ran forever, a huge one stopped at once).
for duration in nan inf 1e10 -1; do
  "$vantrel" run --simulation --duration "$duration" >/dev/null 2>"$work/err"
  status=$?
  [ "$status" -eq 2 ] && grep -q -- "--duration" "$work/err" || fail "--duration $duration: status $status"
done

# Output that cannot be written is an error with a message, never a silent success; a run
# stops at its first lost row (/dev/full is a disk that is always full).
"$vantrel" check --json "$examples/PMP1_pumps.vtld" >/dev/full 2>"$work/err"
status=$?
[ "$status" -eq 1 ] && grep -q "cannot write to standard output" "$work/err" ||
  fail "check into a full disk: status $status"
"$vantrel" run --duration 10 >/dev/full 2>"$work/err"
status=$?
[ "$status" -eq 1 ] && grep -q "cannot write the rows to standard output" "$work/err" ||
  fail "run into a full disk: status $status"
"$vantrel" run --duration 3 --events /dev/full >/dev/null 2>"$work/err"
status=$?
[ "$status" -eq 1 ] && grep -q "cannot write the events to /dev/full" "$work/err" ||
  fail "events into a full disk: status $status"

[ "$failures" -eq 0 ] && echo "all checks passed"
exit "$failures"
