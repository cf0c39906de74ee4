#!/usr/bin/env python3
"""Follows examples/walkthrough/README.md as its reader does: in a copy of the folder, runs
every command of its ```console blocks and compares what it prints with what the README
shows under it.

Time stamps (dd/mm/yy hh:mm:ss) differ from run to run, so every stamp, in the README and in
the output alike, is compared as a stamp: a cell that no longer decodes to one (for example
"Invalid time") is a difference. Carriage returns count as line breaks and trailing blanks
are not compared, as in the reference's own check.

Beyond the printed text:
- the enciphered description kept in the folder must be exactly what `vantrel crypt` makes of
  the plain one, so the two cannot drift apart;
- `vantrel check` of the enciphered description must exit with 0, and `vantrel run` must exit
  with 0 after printing data rows;
- a `vantrel-viewer` command runs only when the viewer is given; it must exit with 0, print
  the README's lines (Qt adds notes of its own on standard error) and write a PNG file;
- every picture the README shows must exist.

usage: check_walkthrough.py VANTREL SOURCE_DIR [VANTREL_VIEWER]
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

from check_reference import printed, report, sessions

README = "examples/walkthrough/README.md"
ASSIGNMENT = re.compile(r"^[A-Z_][A-Z0-9_]*=")
PICTURE = re.compile(r"!\[[^\]]*\]\(([^)\s]+)\)")


def split_command(command):
    """(environment assignments, words) of a command line such as `A=b vantrel-viewer ...`."""
    words = shlex.split(command)
    env = {}
    while words and ASSIGNMENT.match(words[0]):
        name, value = words.pop(0).split("=", 1)
        env[name] = value
    return env, words


def enciphered_copy_is_current(vantrel, folder, scratch):
    """The kept .vtld of every .vtl in `folder` equals a fresh encipherment of it."""
    fresh = scratch / "fresh"
    fresh.mkdir()
    plains = sorted(folder.glob("*.vtl"))
    failures = [] if plains else [f"{folder}: no description (.vtl) to check"]
    for plain in plains:
        kept = plain.with_suffix(".vtld")
        if not kept.is_file():
            failures.append(f"{kept.name} is missing beside {plain.name}")
            continue
        shutil.copy(plain, fresh / plain.name)
        subprocess.run([vantrel, "crypt", plain.name], cwd=fresh, check=True,
                       stdout=subprocess.DEVNULL)
        if (fresh / kept.name).read_bytes() != kept.read_bytes():
            failures.append(f"{kept.name} is not what `vantrel crypt {plain.name}` makes: "
                            "encipher it again")
    return failures


def main():
    vantrel, source = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2])
    viewer = os.path.abspath(sys.argv[3]) if len(sys.argv) > 3 else None
    ran = {"check": 0, "crypt": 0, "run": 0, "viewer": 0}
    skipped = 0
    with tempfile.TemporaryDirectory(prefix="vantrel-walk-") as scratch_name:
        scratch = pathlib.Path(scratch_name)
        folder = scratch / "oven"
        shutil.copytree(source / "examples" / "walkthrough", folder)
        failures = enciphered_copy_is_current(vantrel, source / "examples" / "walkthrough",
                                              scratch)

        markdown = (source / README).read_text(encoding="utf-8")
        failures += [f"{README}: the picture {link} does not exist"
                     for link in PICTURE.findall(markdown)
                     if not ((source / README).parent / link).is_file()]

        found = sessions(markdown, stamps=True)
        for number, command, expected in found:
            where = f"{README}:{number}"
            assignments, words = split_command(command)
            if not words or words[0] not in ("vantrel", "vantrel-viewer"):
                failures.append(f"{where}: not a vantrel command: {command}")
                continue
            is_viewer = words[0] == "vantrel-viewer"
            if is_viewer and viewer is None:
                skipped += 1
                continue
            env = {**os.environ, "HOME": str(scratch),
                   "XDG_CONFIG_HOME": str(scratch / "config"), **assignments}
            try:
                result = subprocess.run([viewer if is_viewer else vantrel] + words[1:],
                                        cwd=folder, env=env, capture_output=True, timeout=120)
            except subprocess.TimeoutExpired:
                failures.append(f"{where}: `{command}` did not finish within 120 s")
                continue
            actual = printed(result, stamps=True)
            shown, wanted = "\n  ".join(actual), "\n  ".join(expected)

            if is_viewer:
                ran["viewer"] += 1
                picture = (words[words.index("--screenshot") + 1]
                           if "--screenshot" in words[:-1] else None)
                if result.returncode != 0 or any(line not in actual for line in expected):
                    failures.append(f"{where}: `{command}` exited with {result.returncode} "
                                    f"and printed\n  {shown}\nwhere the README shows\n  {wanted}")
                elif picture is None:
                    failures.append(f"{where}: the viewer command makes no --screenshot")
                elif not (folder / picture).is_file() or \
                        not (folder / picture).read_bytes().startswith(b"\x89PNG"):
                    failures.append(f"{where}: {picture} is not a PNG picture")
                continue

            if actual != expected:
                failures.append(f"{where}: `{command}` printed\n  {shown}\n"
                                f"and the README shows\n  {wanted}")
            subcommand = words[1] if len(words) > 1 else ""
            if subcommand in ran:
                ran[subcommand] += 1
            if subcommand == "check" and words[2].endswith(".vtld") and result.returncode != 0:
                failures.append(f"{where}: `{command}` exited with {result.returncode}")
            if subcommand == "run":
                # The first tabbed line is the header; the tabbed lines after it are rows.
                rows = [line for line in actual if "\t" in line][1:]
                if result.returncode != 0 or not rows:
                    failures.append(f"{where}: `{command}` exited with {result.returncode} "
                                    f"after {len(rows)} data rows")

    failures += [f"{README}: no `vantrel {step}` command is shown"
                 for step in ("check", "crypt", "run") if ran[step] == 0]
    if viewer is not None and ran["viewer"] == 0:
        failures.append(f"{README}: no `vantrel-viewer` command is shown")
    return report(failures, f"{len(found)} commands found, {len(found) - skipped} run "
                            f"({skipped} viewer commands skipped), {len(failures)} failures")


if __name__ == "__main__":
    sys.exit(main())
