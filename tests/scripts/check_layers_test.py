#!/usr/bin/env python3
"""The folder-layering check on a tiny source tree: includes the order allows pass, and
each include it forbids is named with its file and line."""

import pathlib
import subprocess
import sys
import tempfile

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "check_layers.py"

# Each file of the tree, with the folders it includes in order.
ALLOWED = {
    "platform/text.h": ["vantrel/timer.h"],
    "description/loader.cpp": ["description/loader.h", "platform/text.h"],
    "decoding/walk.cpp": ["symbols/values.h", "description/loader.h"],
    "output/export.cpp": ["decoding/walk.h", "vantrel/control.h"],
    "control/module.cpp": ["acquisition/cycle.h", "output/export.h"],
    "output/xlsx/writer.cpp": ["output/xlsx/writer.h", "platform/paths.h"],
    "history/spool.cpp": ["platform/text.h"],
}
FORBIDDEN = {
    "platform/paths.cpp": ["platform/paths.h", "description/loader.h"],
    "symbols/values.cpp": ["description/loader.h"],
    "decoding/walk.h": ["control/module.h"],
    "output/graph.cpp": ["acquisition/cycle.h"],
    "output/xlsx/sheet.cpp": ["output/export.h"],
    "history/queue.cpp": ["decoding/walk.h"],
    "control/layout.cpp": ["history/spool.h"],
}
EXPECTED = [
    "src/control/layout.cpp:1: folder control may not include folder history",
    "src/decoding/walk.h:1: folder decoding may not include folder control",
    "src/history/queue.cpp:1: folder history may not include folder decoding",
    "src/output/graph.cpp:1: folder output may not include folder acquisition",
    "src/output/xlsx/sheet.cpp:1: folder output/xlsx may not include folder output",
    "src/platform/paths.cpp:2: folder platform may not include folder description",
    "src/symbols/values.cpp:1: folder symbols may not include folder description",
]


def run(files):
    with tempfile.TemporaryDirectory() as root:
        src = pathlib.Path(root) / "src"
        for name, includes in files.items():
            path = src / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("".join(f'#include "{i}"\n' for i in includes) + "int x;\n")
        done = subprocess.run([sys.executable, str(CHECK), str(src)], capture_output=True,
                              text=True, check=False)
        return done.returncode, done.stdout.splitlines()


def main():
    failures = []
    status, lines = run(ALLOWED)
    if (status, lines) != (0, []):
        failures.append(f"the allowed tree failed ({status}): {lines}")
    status, lines = run({**ALLOWED, **FORBIDDEN})
    if (status, lines) != (1, EXPECTED):
        failures.append(f"the forbidden includes gave ({status}):\n" + "\n".join(lines))
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
