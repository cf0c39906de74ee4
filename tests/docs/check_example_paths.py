#!/usr/bin/env python3
"""Every examples/... path that a user guide names must exist in the repository. An
enciphered description (.vtld) counts as existing when its plain .vtl is there: the guides
tell the reader to make the one from the other with `vantrel crypt`.

usage: check_example_paths.py SOURCE_DIR
"""

import pathlib
import re
import sys

GUIDES = ["docs/description-files.md", "docs/controller-side.md", "docs/embedding.md",
          "examples/walkthrough/README.md", "README.md"]
PATH = re.compile(r"examples/[A-Za-z0-9_./-]*[A-Za-z0-9_/-]")


def main():
    source = pathlib.Path(sys.argv[1])
    failures = []
    for guide in GUIDES:
        text = (source / guide).read_text(encoding="utf-8")
        paths = set()
        for number, line in enumerate(text.split("\n"), start=1):
            for match in PATH.finditer(line):
                # "examples/..." inside a longer path (build/examples/...) is not ours.
                if match.start() > 0 and line[match.start() - 1] not in " `(\"'[=:,":
                    continue
                path = match.group(0).rstrip("/")
                paths.add(path)
                exists = (source / path).exists()
                if not exists and path.endswith(".vtld"):
                    exists = (source / path[:-1]).is_file()
                if not exists:
                    failures.append(f"{guide}:{number}: {path} does not exist")
        if not paths:
            failures.append(f"{guide}: names no examples/ path at all")
        print(f"{guide}: {len(paths)} example paths")
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
