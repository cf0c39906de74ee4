#!/usr/bin/env python3
"""Code and files that the user guides quote must be quoted as they stand.

A fenced block right after a line `<!-- quote: PATH -->` must appear, line for line and
without gaps, in the file PATH of the repository.

usage: check_quotes.py SOURCE_DIR
"""

import pathlib
import re
import sys

from check_reference import report

GUIDES = ["docs/description-files.md", "docs/controller-side.md", "docs/embedding.md",
          "examples/walkthrough/README.md"]
MARK = re.compile(r"<!-- quote: (\S+) -->")


def quotes(text):
    """(line number, path, block lines or None) for every marked block."""
    lines = text.split("\n")
    for i, line in enumerate(lines):
        mark = MARK.search(line)
        if not mark:
            continue
        start = i + 1
        if start >= len(lines) or not lines[start].startswith("```"):
            yield i + 1, mark.group(1), None
            continue
        end = start + 1
        while end < len(lines) and not lines[end].startswith("```"):
            end += 1
        yield i + 1, mark.group(1), lines[start + 1:end]


def problem(source, path, block):
    """Why the quoted `block` of `path` is wrong, or None."""
    if block is None:
        return "no code block after the quote mark"
    if not block:
        return "the quoted block is empty"
    if not (source / path).is_file():
        return f"{path} does not exist"
    lines = (source / path).read_bytes().decode("cp1252").replace("\r\n", "\n").split("\n")
    if not any(lines[k:k + len(block)] == block for k in range(len(lines) - len(block) + 1)):
        return f"the block is not a part of {path} as it stands"
    return None


def main():
    source = pathlib.Path(sys.argv[1])
    found = [(f"{guide}:{number}", path, block) for guide in GUIDES
             for number, path, block in quotes((source / guide).read_text(encoding="utf-8"))]
    failures = [f"{where}: {why}" for where, path, block in found
                if (why := problem(source, path, block))]
    if len(found) < 10:
        failures.append("too few quotes found: the quote marks are lost")
    return report(failures, f"{len(found)} quotes checked, {len(failures)} failures")


if __name__ == "__main__":
    sys.exit(main())
