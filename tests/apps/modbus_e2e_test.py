#!/usr/bin/python3
"""Two processes over Modbus TCP: `vantrel controller` serves the pump-station program on a
free loopback port, `vantrel run --controller modbus://...` prints the rows. The test forces
records, an overrun, a counter restart, a dropped network and a killed controller, and checks
every printed row against what the controller wrote: each record once and in order, the
missed ones counted in a "Miss " row, restarts and disconnections marked.

Usage: modbus_e2e_test.py VANTREL_BINARY
"""

import os
import queue
import signal
import subprocess
import sys
import threading
import time

VANTREL = sys.argv[1]
WAIT = 20.0  # seconds any one expectation may take


class Process:
    """A child process whose standard output is read line by line in the background."""

    def __init__(self, args):
        self.args = args
        self.proc = subprocess.Popen(args, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.PIPE, text=True, bufsize=1)
        self.lines = queue.Queue()
        self.stderr = []
        threading.Thread(target=self._read, args=(self.proc.stdout, self.lines.put),
                         daemon=True).start()
        threading.Thread(target=self._read, args=(self.proc.stderr, self.stderr.append),
                         daemon=True).start()

    @staticmethod
    def _read(stream, sink):
        for line in stream:
            sink(line.rstrip("\n"))

    def next_line(self, timeout=WAIT):
        try:
            return self.lines.get(timeout=timeout)
        except queue.Empty:
            raise AssertionError(f"{self.args[1]}: no output within {timeout} s; "
                                 f"stderr: {self.stderr}") from None

    def send(self, command):
        self.proc.stdin.write(command + "\n")
        self.proc.stdin.flush()
        reply = self.next_line()
        assert reply.startswith("ok "), f"{command!r} answered {reply!r}"

    def stop(self, sig=signal.SIGTERM):
        if self.proc.poll() is None:
            self.proc.send_signal(sig)
        try:
            return self.proc.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self.proc.kill()
            self.proc.wait()
            raise AssertionError(f"{self.args[1]} did not stop within 10 s") from None


def start_controller(port=0):
    controller = Process([VANTREL, "controller", "--listen", f"127.0.0.1:{port}",
                          "--record-interval", "3600000"])
    first = controller.next_line()
    assert first.startswith("listening on 127.0.0.1:"), first
    return controller, int(first.rsplit(":", 1)[1])


class Rows:
    """What the run printed, sorted into records, marker rows and status rows."""

    def __init__(self, run):
        self.run = run
        header = run.next_line().split("\t")
        assert header[0] == "PCD", header
        self.flow = header.index("Flow")
        self.records = []  # record numbers, from the flow word (256 + n - 1)
        self.events = []   # everything in order: numbers, "Miss n", "Restart", statuses

    def read_until(self, done, what):
        deadline = time.monotonic() + WAIT
        while not done():
            remaining = deadline - time.monotonic()
            if remaining <= 0:
                raise AssertionError(f"timed out waiting for {what}; rows so far: {self.events}")
            cells = self.run.next_line(remaining).split("\t")
            status = cells[0]
            if status.startswith("Miss ") or status == "Restart":
                self.events.append(status)
            elif cells[self.flow] == "":
                self.events.append("status " + status)  # a change of the controller status
            else:
                number = int(cells[self.flow], 16) - 255
                self.records.append(number)
                self.events.append(number)

    def wait_for_records(self, numbers):
        self.read_until(lambda: self.records[-len(numbers):] == numbers,
                        f"records {numbers[0]}..{numbers[-1]}")


def main():
    controller, port = start_controller()
    run = None
    try:
        controller.send("burst 3")
        run = Process([VANTREL, "run", "--controller", f"modbus://127.0.0.1:{port}",
                       "--interval", "50", "--status-col", "--max-rows", "1000"])
        rows = Rows(run)
        rows.wait_for_records([1, 2, 3])

        controller.send("burst 5")
        rows.wait_for_records(list(range(4, 9)))

        # 60 records at once overrun the ring of 50: 11 are lost, the 49 readable ones follow.
        controller.send("burst 60")
        rows.wait_for_records(list(range(20, 69)))
        assert "Miss 11" in rows.events, rows.events

        controller.send("restart")
        controller.send("burst 2")
        rows.wait_for_records([69, 70])
        assert rows.events.count("Restart") == 1, rows.events

        # The controller leaves the network; records written meanwhile arrive afterwards.
        controller.send("offline 1500")
        controller.send("burst 3")
        rows.wait_for_records([71, 72, 73])
        assert "status Disconnect" in rows.events, rows.events
        after_disconnect = rows.events[rows.events.index("status Disconnect"):]
        assert "status Run" in after_disconnect, rows.events

        expected = list(range(1, 9)) + list(range(20, 74))
        assert rows.records == expected, f"records shown: {rows.records}"

        # The controller process dies and a new one starts on the same port: its counter
        # starts again, so the run marks a restart and reads the new program's records.
        controller.stop(signal.SIGKILL)
        controller, _ = start_controller(port)
        controller.send("burst 2")
        before = len(rows.events)
        rows.read_until(lambda: rows.records[-2:] == [1, 2] and len(rows.records) > len(expected),
                        "the new controller's records")
        tail = rows.events[before:]
        assert "status Disconnect" in tail and "Restart" in tail, tail
        assert tail.index("status Disconnect") < tail.index("Restart") < tail.index(1), tail

        assert run.stop(signal.SIGINT) == 0, run.stderr
        run = None
        print(f"ok: {len(rows.records)} records, events {rows.events[:6]}...")
    finally:
        if run is not None:
            run.stop(signal.SIGKILL)
        controller.proc.stdin.close()
        controller.stop()


if __name__ == "__main__":
    main()
