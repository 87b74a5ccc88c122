#!/usr/bin/env python3
"""test_exports.py LIBRARY NAME...: the library defines exactly these entry points for others, and nothing else."""

import subprocess
import sys


def main(library, *expected):
    output = subprocess.run(["nm", "-D", "--defined-only", library], check=True, stdout=subprocess.PIPE, text=True).stdout
    names = {line.split()[-1] for line in output.splitlines()}
    for name in sorted(names ^ set(expected)):
        print(("missing: " if name in expected else "also exported: ") + name)
    return 0 if names == set(expected) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
