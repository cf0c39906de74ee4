#!/usr/bin/env python3
"""Checks that the folders of src/ include only the folders below them.

The core's folders, lowest first:
    platform
    description, symbols      (peers: neither includes the other)
    decoding
    acquisition, output       (peers: neither includes the other)
    control
A folder may include itself, the folders below it and the public headers ("vantrel/...").
The libraries beside the core (history, output/xlsx) may include platform only.

Usage: check_layers.py [SRC_DIR]   (default: the src/ beside this script's folder)
Prints one line per include that breaks the order and exits 1 when there is any.
"""

import pathlib
import re
import sys

LEVELS = {
    "platform": 0,
    "description": 1,
    "symbols": 1,
    "decoding": 2,
    "acquisition": 3,
    "output": 3,
    "control": 4,
}
# Libraries beside the core, and what each may include besides itself.
BESIDE = {
    "history": {"platform"},
    "output/xlsx": {"platform"},
}
PUBLIC = "vantrel"
SOURCES = {".h", ".hpp", ".cpp", ".cc"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+/[^"]+)"')


def folder_of(relative):
    """The folder a source belongs to: a library beside the core, or a core folder."""
    parts = relative.parts
    if len(parts) > 2 and "/".join(parts[:2]) in BESIDE:
        return "/".join(parts[:2])
    return parts[0] if len(parts) > 1 else None


def may_include(folder, included):
    if included in (PUBLIC, folder):
        return True
    if folder in BESIDE:
        return included in BESIDE[folder]
    # The core never includes the libraries beside it, nor a folder it does not know.
    if folder not in LEVELS or included not in LEVELS:
        return False
    return LEVELS[included] < LEVELS[folder]


def check(src):
    problems = []
    for path in sorted(src.rglob("*")):
        if path.suffix not in SOURCES or not path.is_file():
            continue
        folder = folder_of(path.relative_to(src))
        if folder is None:
            continue
        lines = path.read_text(encoding="utf-8", errors="replace").splitlines()
        for number, line in enumerate(lines, 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            included = folder_of(pathlib.PurePosixPath(match.group(1)))
            if not may_include(folder, included):
                where = path.relative_to(src.parent)
                problems.append(f"{where}:{number}: folder {folder} may not include folder "
                                f"{included}")
    return problems


def main(argv):
    src = pathlib.Path(argv[1]) if len(argv) > 1 else pathlib.Path(__file__).parent.parent / "src"
    if not src.is_dir():
        print(f"{src}: not a folder", file=sys.stderr)
        return 2
    problems = check(src)
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
