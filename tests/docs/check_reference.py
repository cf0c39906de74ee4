#!/usr/bin/env python3
"""Runs the `vantrel` commands that the description-file reference and the controller-side
guide show and compares their output with the output printed under them.

The guides show terminal sessions in ```console blocks: a line `$ vantrel ...` is a
command, the lines after it (up to the next `$` line) are what it prints, standard error
first. Carriage returns inside messages are shown as line breaks; trailing blanks are not
compared. The commands run from a copy of the repository's examples/ folder in which every
plain description under examples/reference/ has been enciphered with `vantrel crypt`, as
the reference tells its reader to do. Every description and user buffer file under
examples/reference/ must be checked by at least one command of the guides.

usage: check_reference.py VANTREL SOURCE_DIR
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

DOCS = ["docs/description-files.md", "docs/controller-side.md"]
STAMP = re.compile(r"\b\d\d/\d\d/\d\d \d\d:\d\d:\d\d\b")


def normalise(text, stamps=False):
    """Lines without trailing blanks or trailing empty lines; with `stamps`, every time stamp
    (dd/mm/yy hh:mm:ss) replaced by <stamp>."""
    lines = [line.rstrip() for line in text.replace("\r\n", "\n").replace("\r", "\n").split("\n")]
    if stamps:
        lines = [STAMP.sub("<stamp>", line) for line in lines]
    while lines and not lines[-1]:
        lines.pop()
    return lines


def sessions(markdown, stamps=False):
    """(line number, command, expected output lines) for every command of every console block,
    the output made comparable by `normalise`."""
    commands = []
    inside = False
    for number, line in enumerate(markdown.split("\n"), start=1):
        if line.startswith("```"):
            inside = line.strip() == "```console"
        elif inside and line.startswith("$ "):
            commands.append([number, line[2:], []])
        elif inside and commands:
            commands[-1][2].append(line)
    return [(n, c, normalise("\n".join(out), stamps)) for n, c, out in commands]


def printed(result, stamps=False):
    """What a finished command printed, standard error first, made comparable."""
    return normalise(result.stderr.decode("utf-8", "replace") +
                     result.stdout.decode("utf-8", "replace"), stamps)


def report(failures, summary):
    for failure in failures:
        print(failure)
    print(summary)
    return 1 if failures else 0


def main():
    vantrel, source = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2])
    failures = []
    with tempfile.TemporaryDirectory(prefix="vantrel-docs-") as scratch:
        root = pathlib.Path(scratch)
        shutil.copytree(source / "examples", root / "examples")
        reference = root / "examples" / "reference"
        for plain in sorted(reference.rglob("*.vtl")):
            subprocess.run([vantrel, "crypt", str(plain.relative_to(root))], cwd=root,
                           check=True, stdout=subprocess.DEVNULL)

        checked = set()
        found = [(doc, number, command, expected) for doc in DOCS
                 for number, command, expected in sessions((source / doc).read_text("utf-8"))]
        for doc, number, command, expected in found:
            words = shlex.split(command)
            if not words or words[0] != "vantrel":
                failures.append(f"{doc}:{number}: not a vantrel command: {command}")
                continue
            if len(words) > 2 and words[1] == "check":
                checked.add(os.path.normpath(words[2]))
            actual = printed(subprocess.run([vantrel] + words[1:], cwd=root,
                                            capture_output=True))
            if actual != expected:
                failures.append(f"{doc}:{number}: `{command}` printed\n  " +
                                "\n  ".join(actual) + "\nand the reference shows\n  " +
                                "\n  ".join(expected))

        # Every file of the reference is loaded by one of its commands.
        for path in sorted(reference.rglob("*")):
            relative = str(path.relative_to(root))
            if path.suffix == ".vtl":
                wanted = {relative, relative + "d"}
            elif path.suffix in (".vtlr", ".VTLD"):
                wanted = {relative}
            else:
                continue
            if not wanted & checked:
                failures.append(f"no guide runs `vantrel check` on {relative}")

    if len(found) < 20:
        failures.append(f"only {len(found)} commands found; the console blocks are lost")
    return report(failures, f"{len(found)} commands compared, {len(failures)} failures")


if __name__ == "__main__":
    sys.exit(main())
