#!/usr/bin/env python3
"""Two `vantrel run` processes, each with its own embedded controller, write into one
PostgreSQL history at once: each process's rows in the database are exactly the lines it
printed, in order, and `vantrel history` reads them back as printed. The server is a
private one (scripts/postgres-test-server.sh). Bad history settings get a clear error and
exit status 2.
"""
import os
import shutil
import subprocess
import sys
import tempfile

vantrel, server_script = sys.argv[1], sys.argv[2]
failures = []


def check(condition, what):
    if not condition:
        failures.append(what)
        print("FAIL:", what)


def vantrel_run(*args):
    return subprocess.run([vantrel, *args], capture_output=True, text=True, timeout=60)


def psql(url, sql):
    r = subprocess.run(["psql", "-qAtX", "-F", "\x1f", url, "-c", sql],
                       capture_output=True, text=True, timeout=60)
    if r.returncode != 0:
        raise RuntimeError(r.stderr)
    return [line.split("\x1f") for line in r.stdout.split("\n") if line]


work = tempfile.mkdtemp(prefix="vpg-", dir="/tmp")
os.chmod(work, 0o755)
started = subprocess.run(["bash", server_script, "start", work], capture_output=True, text=True)
if started.returncode != 0:
    print(started.stdout, started.stderr)
    sys.exit(1 if os.environ.get("CI") or shutil.which("psql") else 77)
url = started.stdout.strip()
try:
    psql(url, "CREATE DATABASE plant")
    plant = url.replace("/postgres?", "/plant?")
    runs = [subprocess.Popen([vantrel, "run", "--history", plant, "--status-col", "--duration", "4",
                              "--interval", "100", "--record-interval", "20"],
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            for _ in range(2)]
    outputs = [p.communicate(timeout=120) for p in runs]
    for p, (out, err) in zip(runs, outputs):
        check(p.returncode == 0, f"run {p.pid}: status {p.returncode}: {err}")
        printed = [line.split("\t", 1)[1] for line in out.splitlines()[1:]]
        check(len(printed) > 50, f"run {p.pid} printed only {len(printed)} rows")
        stored = [row[0] for row in psql(
            plant, "SELECT r.shown FROM rows r JOIN descriptions d ON d.id = r.description_id "
                   f"JOIN vantrel_writers w ON w.writer = d.writer WHERE w.pid = {p.pid} "
                   "ORDER BY r.id")]
        check(stored == printed,
              f"run {p.pid}: {len(stored)} rows stored, {len(printed)} printed; first "
              f"difference at {next((i for i, (a, b) in enumerate(zip(stored, printed)) if a != b), min(len(stored), len(printed)))}")
    check(psql(plant, "SELECT count(*) FROM vantrel_writers")[0][0] == "2", "two writers")

    # `vantrel history` reads the server back: each run's rows under its own description,
    # exactly as the run printed them (header and lines), the runs in the order they began.
    order = [int(row[0]) for row in psql(
        plant, "SELECT w.pid FROM descriptions d JOIN vantrel_writers w ON w.writer = d.writer "
               "ORDER BY d.id")]
    by_pid = {p.pid: out for p, (out, _) in zip(runs, outputs)}
    r = vantrel_run("history", plant, "--key", "PMP1", "--status-col")
    check(r.returncode == 0, f"history from the server: {r.stderr}")
    expected = [line for pid in order for line in by_pid[pid].splitlines()]
    check(r.stdout.splitlines() == expected,
          f"the server's history gives {len(r.stdout.splitlines())} lines, the runs printed "
          f"{len(expected)}")
    r = vantrel_run("history", plant, "--list")
    listed = [line.split("\t") for line in r.stdout.splitlines()]
    check(len(listed) == 2 and listed[1][:3] == ["PMP1", "2", str(len(expected) - 2)],
          f"--list of the server's history: {listed}")

    # Bad settings: the message names the problem, nothing runs.
    for args, expected in [
        (["--history", "postgresql://localhost/db?nosuchoption=1"], "does not parse"),
        (["--history", url.replace("host=" + work, "host=/nonexistent")], "cannot reach the history"),
        (["--history", plant, "--history-spool-limit", "0"], "--history-spool-limit"),
        (["--history", plant, "--history-spool-limit", "12Q"], "--history-spool-limit"),
        (["--history", plant, "--history-spool", "/nonexistent/spool"], "cannot make a spool file"),
    ]:
        r = vantrel_run("run", "--records", "3", *args)
        check(r.returncode == 2 and expected in r.stderr,
              f"{args}: status {r.returncode}, said {r.stderr.strip()!r}")
finally:
    subprocess.run(["bash", server_script, "stop", work], capture_output=True)
    shutil.rmtree(work, ignore_errors=True)

if failures:
    sys.exit(1)
print("two runs into one PostgreSQL history: every printed row stored once, in order")
