#!/usr/bin/env python3
"""`vantrel history` against what `vantrel run` printed and exported live.

A run on the embedded controller keeps its rows in a history and prints them; the history
shown again gives the same lines, a time range gives exactly the live lines of that range,
and its exports equal byte for byte the exports the run made of its table. Bad input gets a
clear error and exit status 1.
"""
import os
import sqlite3
import subprocess
import sys
import tempfile

vantrel = sys.argv[1]
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def run(*args):
    return subprocess.run([vantrel, *args], capture_output=True, text=True, timeout=120)


with tempfile.TemporaryDirectory() as work:
    db = os.path.join(work, "trace.db")
    stamps = ["--date-col", "--time-col", "--status-col"]
    live = {}
    # One run per export format, each into the same history; the table is exported on exit.
    for fmt, ext in (("csv", "csv"), ("biff2", "xls")):
        out = os.path.join(work, f"live-{fmt}.{ext}")
        r = run("run", "--duration", "3", "--interval", "100", "--record-interval", "20",
                "--max-rows", "30000",
                "--history", db, *stamps, "--export", out, "--export-format", fmt,
                "--export-on-exit")
        check(r.returncode == 0, f"run {fmt}: {r.returncode} {r.stderr}")
        live[fmt] = r.stdout.splitlines()
        check(len(live[fmt]) > 20, f"run {fmt} printed {len(live[fmt])} lines")

    # The whole history as text: every line of both runs in order, each run's under the
    # header of the description it loaded.
    r = run("history", db, *stamps)
    check(r.returncode == 0, f"history text: {r.stderr}")
    lines = r.stdout.splitlines()
    expected = live["csv"] + live["biff2"]
    check(lines == expected,
          f"history text differs from the live lines ({len(lines)} vs {len(expected)})")

    # Without stamps the lines are the cells alone.
    r = run("history", db)
    check(r.stdout.splitlines()[1] == live["csv"][1].split("\t", 3)[3],
          "a line without stamps is the cells alone")

    # A range of one second: exactly the live lines with that date and time.
    date, time = live["csv"][5].split("\t")[:2]
    d, m, y = date.split("/")
    iso = f"20{y}-{m}-{d} {time}"
    r = run("history", db, "--key", "PMP1", "--from", iso, "--to", iso, *stamps)
    check(r.returncode == 0, f"history range: {r.stderr}")
    in_second = [l for l in live["csv"][1:] if l.startswith(f"{date}\t{time}\t")]
    check(r.stdout.splitlines()[1:] == in_second,
          f"the range {iso} gives {len(r.stdout.splitlines()) - 1} rows, live {len(in_second)}")

    # The exports of each run's range equal the run's own exports byte for byte.
    con = sqlite3.connect(db)
    # The first run ends before the second begins: its row count bounds it.
    times = [row[0] for row in con.execute("SELECT pc_time FROM rows ORDER BY id")]
    run_rows = len(live["csv"]) - 1
    t_first, t_last, t_next = times[0], times[run_rows - 1], times[run_rows]
    check(t_next > t_last, "the two runs do not overlap in time")
    for fmt, ext, span in (("csv", "csv", ["--from", t_first, "--to", t_last]),
                           ("biff2", "xls", ["--from", t_next])):
        back = os.path.join(work, f"back.{ext}")
        r = run("history", db, *span, *stamps, "--format", fmt, "-o", back)
        check(r.returncode == 0, f"history {fmt}: {r.stderr}")
        with open(os.path.join(work, f"live-{fmt}.{ext}"), "rb") as a, open(back, "rb") as b:
            check(a.read() == b.read(), f"the {fmt} export equals the live one")

    # --list counts what the runs wrote.
    r = run("history", db, "--list")
    listed = r.stdout.splitlines()
    check(listed[0].split("\t")[:5] == ["Buffer", "Descriptions", "Rows", "Records", "Missed"],
          f"list header {listed[0]}")
    fields = listed[1].split("\t")
    check(fields[0] == "PMP1" and fields[1] == "2" and int(fields[2]) == len(expected) - 2,
          f"list line {listed[1]} for {len(expected) - 2} rows")

    # Bad input: said clearly, exit status 1, nothing created or altered.
    foreign = os.path.join(work, "foreign.db")
    sqlite3.connect(foreign).execute("CREATE TABLE t (x)").connection.commit()
    newer = os.path.join(work, "newer.db")
    sqlite3.connect(newer).executescript(
        "CREATE TABLE vantrel_schema (version INTEGER); INSERT INTO vantrel_schema VALUES (99);")
    for args, text in (
        ([os.path.join(work, "none.db")], "no history at"),
        ([foreign], "is not a Vantrel history"),
        ([newer], "newer than this Vantrel"),
        ([db, "--from", "23/11/26"], "is not a time"),
        ([db, "--to", "2026-13-01"], "is not a time"),
        ([db, "--key", "XXXX"], "no rows of buffer XXXX"),
        ([db, "--from", "2001-01-01", "--to", "2001-01-02"], "no rows"),
        ([db, "--format", "csv"], "needs --output"),
        ([db, "--format", "csv", "-o", os.path.join(work, "missing", "x.csv")], "Error"),
    ):
        r = run("history", *args)
        check(r.returncode == 1 and text in r.stderr,
              f"history {args}: status {r.returncode}, said {r.stderr.strip()!r}")
    check(not os.path.exists(os.path.join(work, "none.db")), "a missing history is not created")
    check(sqlite3.connect(newer).execute("SELECT version FROM vantrel_schema").fetchone()[0] == 99,
          "a newer history is left alone")

print("ok" if not failures else f"{len(failures)} failures")
sys.exit(1 if failures else 0)
