#!/usr/bin/python3
"""Reads a CSV export with Python's csv module and prints each row's fields separated by
tabs (a field's own tabs and line breaks shown as \\t and \\n), one row per line."""

import csv
import sys


def main(path):
    with open(path, newline="", encoding="utf-8-sig") as f:
        for row in csv.reader(f):
            print("\t".join(field.replace("\t", "\\t").replace("\n", "\\n") for field in row))


if __name__ == "__main__":
    main(sys.argv[1])
