#!/usr/bin/env python3
"""Code and files that the user guides quote must be quoted as they stand.

A fenced block right after a line `<!-- quote: PATH -->` must appear, line for line and
without gaps, in the file PATH of the repository.

usage: check_quotes.py SOURCE_DIR
"""

import pathlib
import re
import sys

GUIDES = ["docs/description-files.md", "docs/controller-side.md", "docs/embedding.md",
          "examples/walkthrough/README.md"]
MARK = re.compile(r"<!-- quote: (\S+) -->")


def quotes(text):
    """(line number, path, block lines) for every marked block."""
    lines = text.split("\n")
    found = []
    for i, line in enumerate(lines):
        mark = MARK.search(line)
        if not mark:
            continue
        start = i + 1
        if start >= len(lines) or not lines[start].startswith("```"):
            found.append((i + 1, mark.group(1), None))
            continue
        end = start + 1
        while end < len(lines) and not lines[end].startswith("```"):
            end += 1
        found.append((i + 1, mark.group(1), lines[start + 1:end]))
    return found


def contains(haystack, needle):
    return any(haystack[k:k + len(needle)] == needle
               for k in range(len(haystack) - len(needle) + 1))


def main():
    source = pathlib.Path(sys.argv[1])
    failures = []
    count = 0
    for guide in GUIDES:
        for number, path, block in quotes((source / guide).read_text(encoding="utf-8")):
            count += 1
            where = f"{guide}:{number}"
            if block is None:
                failures.append(f"{where}: no code block after the quote mark")
                continue
            if not block:
                failures.append(f"{where}: the quoted block is empty")
                continue
            file = source / path
            if not file.is_file():
                failures.append(f"{where}: {path} does not exist")
                continue
            lines = file.read_bytes().decode("cp1252").replace("\r\n", "\n").split("\n")
            if not contains(lines, block):
                failures.append(f"{where}: the block is not a part of {path} as it stands")
    for failure in failures:
        print(failure)
    print(f"{count} quotes checked, {len(failures)} failures")
    if count < 10:
        print("too few quotes found: the quote marks are lost")
        return 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
