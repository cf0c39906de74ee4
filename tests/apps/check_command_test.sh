#!/usr/bin/env bash
# `vantrel check` on the shipped example and on broken variants of it: the trace description
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

# A broken variant of the example: $1 file name, $2 the sed expression that breaks it,
# $3 the exact error text (printf escapes allowed).
broken() {
  local name="$1" edit="$2" expected
  expected="$(printf "$3")"
  sed -e "$edit" "$examples/PMP1_pumps.vtl" >"$work/$name.vtl"
  "$vantrel" crypt "$work/$name.vtl" >/dev/null || { fail "$name: crypt"; return; }
  local err status
  err="$("$vantrel" check "$work/$name.vtld" 2>&1 >/dev/null)"
  status=$?
  [ "$status" -eq 1 ] || fail "$name: exit status $status"
  [ "$err" == "$expected" ] || fail "$name: got [$err] expected [$expected]"
  local j
  j="$("$vantrel" check --json "$work/$name.vtld")"
  /usr/bin/python3 -c 'import json,sys; assert json.loads(sys.argv[1]) == {"error": sys.argv[2]}' \
    "$j" "$expected" || fail "$name: JSON error [$j]"
}

broken no-column-width '/^ColumnWidth=/d' 'Type mismatch'
broken wide-columns 's/^ColumnWidth=.*/ColumnWidth=40000/' 'Overflow'
broken no-record-length '/^RecordLenght=/d' 'Invalid Record Lenght : 0'
broken no-counter-index 's/^CounterIndex=.*/CounterIndex=0/' 'Invalid Counter Index : 4'
broken no-header-length '/^HeaderLenght=/d' 'Invalid Header Lenght : 16'
broken corrected-spelling 's/^RecordLenght=/RecordLength=/' 'Invalid Record Lenght : 0'
broken no-columns '/=.*,.*,.*,%/d' 'No valid section founded.'

# A plain description is not enciphered; a file of another extension is refused. The
# message's carriage returns are line breaks on the terminal and kept as they are in JSON.
cp "$examples/PMP1_pumps.vtl" "$work/plain.vtl"
err="$("$vantrel" check "$work/plain.vtl" 2>&1 >/dev/null)"
[ "$err" == "$(printf 'Error in description file :\n%s\n\nIncorrect file !' "$work/plain.vtl")" ] ||
  fail "plain: [$err]"
j="$("$vantrel" check --json "$work/plain.vtl")"
/usr/bin/python3 -c 'import json,sys; assert json.loads(sys.argv[1])["error"] == sys.argv[2]' "$j" \
  "$(printf 'Error in description file :\n%s\r\rIncorrect file !' "$work/plain.vtl")" ||
  fail "plain: JSON error [$j]"
cp "$examples/PMP1_pumps.vtld" "$work/trace.txt"
err="$("$vantrel" check "$work/trace.txt" 2>&1 >/dev/null)"
[ "$err" == "$(printf 'Error in description file :\n%s\n\nBad source file extension !' "$work/trace.txt")" ] ||
  fail "extension: [$err]"

# The user buffer file needs the buffer's key.
"$vantrel" check --key TNK1 "$examples/tanks.vtlr" >/dev/null || fail "the user buffer file"
"$vantrel" check --key XXXX "$examples/tanks.vtlr" >/dev/null 2>&1 && fail "a wrong key loads"

[ "$failures" -eq 0 ] && echo "all checks passed"
exit "$failures"
