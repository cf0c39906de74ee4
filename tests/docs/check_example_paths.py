#!/usr/bin/env python3
"""Every examples/... path that a user guide names must exist in the repository. An
enciphered description (.vtld) counts as existing when its plain .vtl is there: the guides
tell the reader to make the one from the other with `vantrel crypt`.

usage: check_example_paths.py SOURCE_DIR
"""

import pathlib
import re
import sys

from check_reference import report

GUIDES = ["docs/description-files.md", "docs/controller-side.md", "docs/embedding.md",
          "examples/walkthrough/README.md", "README.md"]
PATH = re.compile(r"examples/[A-Za-z0-9_./-]*[A-Za-z0-9_/-]")


def main():
    source = pathlib.Path(sys.argv[1])
    failures = []
    for guide in GUIDES:
        paths = set()
        for number, line in enumerate((source / guide).read_text("utf-8").split("\n"), 1):
            for match in PATH.finditer(line):
                # "examples/..." inside a longer path (build/examples/...) is not ours.
                if match.start() > 0 and line[match.start() - 1] not in " `(\"'[=:,":
                    continue
                path = match.group(0).rstrip("/")
                paths.add(path)
                if not (source / path).exists() and \
                        not (path.endswith(".vtld") and (source / path[:-1]).is_file()):
                    failures.append(f"{guide}:{number}: {path} does not exist")
        if not paths:
            failures.append(f"{guide}: names no examples/ path at all")
        print(f"{guide}: {len(paths)} example paths")
    return report(failures, f"{len(failures)} failures")


if __name__ == "__main__":
    sys.exit(main())
